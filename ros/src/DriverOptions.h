#ifndef TAVDRIVER_DRIVEROPTIONS_H
#define TAVDRIVER_DRIVEROPTIONS_H

#include <string>

#include "SessionSettings.h"

namespace tavdriver {

// Everything the driver is told at its start, in the library's units where the library uses
// them (the node reads its parameters in ROS units and converts once).
struct DriverOptions {
  SessionSettings session;
  std::string jointPrefix;
  double publishRate = 125.0;      // joint states per second
  double poseRate = 25.0;          // tool pose and inputs per second
  int inputCount = 10;             // inputs 1..N are published
  int outputCount = 8;             // outputs 1..N are published
  double goalTolerance = 0.05;     // degrees, a goal's default per joint
  double goalTimeTolerance = 0.5;  // seconds, a goal's default
  double pathTolerance = 0.0;      // degrees, a goal's default per joint; 0: not checked
  int logLevel = 2;                // the library's log level
};

}  // namespace tavdriver

#endif
