#ifndef TAVROSTEST_ROSMASTER_H
#define TAVROSTEST_ROSMASTER_H

#include <ros/spinner.h>

#include <memory>

#include "ChildProcess.h"
#include "support/TemporaryDirectory.h"

namespace tavrostest {

// A program's own ROS: a rosmaster on a free loopback port with ROS_HOME in a temporary folder,
// the environment every child node inherits, and this process as a node whose callbacks are
// served on two threads. One per program: ROS initialises a process once.
class RosMaster {
public:
  // Throws std::runtime_error when the master does not come up.
  RosMaster();
  // Shuts this node down and stops the master.
  ~RosMaster();
  RosMaster(const RosMaster&) = delete;
  RosMaster& operator=(const RosMaster&) = delete;

private:
  tavtest::TemporaryDirectory home;
  std::unique_ptr<ChildProcess> master;
  std::unique_ptr<ros::AsyncSpinner> spinner;
};

}  // namespace tavrostest

#endif
