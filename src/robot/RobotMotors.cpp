#include "Robot.h"
#include "robot/Arguments.h"
#include "robot/ParameterText.h"

using ParameterText::IdList;
using ParameterText::SignalMap;

// Each motor command comes in three forms: one motor, a list, and the cached motor ids (as
// the last Setup found them; "[]" before any).

int Robot::hold(int motor_id) { return hold(1, &motor_id); }
int Robot::hold(unsigned long count, const int* motor_ids) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _command("hold", {{"motor_ids", IdList(count, motor_ids)}});
}
int Robot::hold() { return hold(motorIds.size(), motorIds.data()); }

int Robot::release(int motor_id) { return release(1, &motor_id); }
int Robot::release(unsigned long count, const int* motor_ids) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _command("release", {{"motor_ids", IdList(count, motor_ids)}});
}
int Robot::release() { return release(motorIds.size(), motorIds.data()); }

// Returns when the controller reports the motors still, bounded only by the reply time-out.
int Robot::wait_for_motors(int motor_id) { return wait_for_motors(1, &motor_id); }
int Robot::wait_for_motors(unsigned long count, const int* motor_ids) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _command("wait_for_motors", {{"motor_ids", IdList(count, motor_ids)}});
}
int Robot::wait_for_motors() { return wait_for_motors(motorIds.size(), motorIds.data()); }

int Robot::set_output(int id, int signal) { return set_output(1, &id, &signal); }
int Robot::set_output(unsigned long count, const int* ids, const int* signals) {
  if (!Arguments::Holds(count, ids) || !Arguments::Holds(count, signals)) {
    return RobotEvents::kInvalidArgument;
  }
  return _command("set_output",
                  {{"motor_ids", IdList(count, ids)}, {"signal", SignalMap(count, ids, signals)}});
}

// Texts go out as given.
int Robot::set_EOAT_action(const char* name, const char* action) {
  if (name == nullptr || action == nullptr) {
    return RobotEvents::kInvalidArgument;
  }
  return _command("set_EOAT_action", {{"name", name}, {"action", action}});
}
