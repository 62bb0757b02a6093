// The Python face of the library: tavclient.Robot over the C++ Robot, its state monitor and
// trajectory follower, and the simulator.
#include <pybind11/pybind11.h>
#include <tavclient/Robot.h>

#include "EventDispatcher.h"
#include "RobotBinding.h"
#include "RobotError.h"
#include "SimulatorBinding.h"
#include "StreamBinding.h"
#include "TrajectoryBinding.h"

PYBIND11_MODULE(tavclient, module) {
  module.doc() =
      "Client of the robot-arm controller. Joint positions in degrees, joint speeds in deg/s, "
      "tool positions in metres, orientations in radians, tool speeds in m/s, currents in "
      "amperes, pauses in seconds.";
  tavpy::BindRobotError(module);
  tavpy::BindRobot(module);
  tavpy::BindSimulator(module);
  tavpy::BindStreams(module);
  tavpy::BindTrajectories(module);
  tavpy::EventDispatcher::CloseAtExit();
  module.def("event_text", &Robot::EventText, pybind11::arg("code"), "What an event code means.");
}
