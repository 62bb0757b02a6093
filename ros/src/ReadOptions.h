#ifndef TAVDRIVER_READOPTIONS_H
#define TAVDRIVER_READOPTIONS_H

#include <ros/node_handle.h>

#include "DriverOptions.h"

namespace tavdriver {

// The node's private parameters (ROS units: radians, seconds), each defaulted when absent.
// Throws std::invalid_argument naming a parameter whose value cannot work.
DriverOptions ReadOptions(const ros::NodeHandle& privateNode);

}  // namespace tavdriver

#endif
