#ifndef TAVCLIENT_PYTHON_ROBOTSESSION_H
#define TAVCLIENT_PYTHON_ROBOTSESSION_H

#include <pybind11/pybind11.h>
#include <tavclient/Robot.h>
#include <tavclient/SharedRobot.h>

#include <memory>

#include "EventDispatcher.h"

namespace tavpy {

// What a tavclient.Robot holds: the Robot, shared with the state monitors and trajectory
// followers made for it, and the dispatcher of its events.
class RobotSession {
public:
  RobotSession() : shared(std::make_shared<tavclient::SharedRobot>()) {
    shared->Get().SetEventCallback([this](int code) { events.Post(code); });
  }
  // The Robot may outlive the session in a monitor: its events stop here. Its destructor may
  // wait for its workers, which never need the GIL.
  ~RobotSession() {
    shared->Get().SetEventCallback(nullptr);
    pybind11::gil_scoped_release release;
    shared.reset();
    events.Stop();
  }
  RobotSession(const RobotSession&) = delete;
  RobotSession& operator=(const RobotSession&) = delete;

  Robot& Get() { return shared->Get(); }
  // RobotLogin and Setup run alone through it; monitors and followers share it.
  const std::shared_ptr<tavclient::SharedRobot>& Shared() const { return shared; }
  EventDispatcher& Events() { return events; }

private:
  EventDispatcher events;
  std::shared_ptr<tavclient::SharedRobot> shared;
};

}  // namespace tavpy

#endif
