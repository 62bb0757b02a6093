#ifndef TAVCLIENT_PYTHON_ROBOTSESSION_H
#define TAVCLIENT_PYTHON_ROBOTSESSION_H

#include <pybind11/pybind11.h>
#include <tavclient/Robot.h>

#include <memory>

#include "EventDispatcher.h"

namespace tavpy {

// What a tavclient.Robot holds: the Robot and the dispatcher of its events, which outlives it,
// since the Robot's workers post to it until they are joined.
class RobotSession {
public:
  RobotSession() : robot(std::make_unique<Robot>()) {
    robot->SetEventCallback([this](int code) { events.Post(code); });
  }
  // The Robot's destructor may wait for its workers, which never need the GIL.
  ~RobotSession() {
    pybind11::gil_scoped_release release;
    robot.reset();
    events.Stop();
  }
  RobotSession(const RobotSession&) = delete;
  RobotSession& operator=(const RobotSession&) = delete;

  Robot& Get() { return *robot; }
  EventDispatcher& Events() { return events; }

private:
  EventDispatcher events;
  std::unique_ptr<Robot> robot;
};

}  // namespace tavpy

#endif
