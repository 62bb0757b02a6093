#include "Robot.h"
#include "robot/Arguments.h"
#include "robot/ParameterText.h"

using ParameterText::IdList;

// Each motor query comes in three forms: one motor (the whole reply read as one number), a
// list and the cached motor ids. The list forms write one value per value in the reply, at
// most as many as there are ids; their vector forms take every value the reply holds.

int Robot::get_current(int motor_id, double& value) {
  return _queryValue("get_current", {{"motor_ids", IdList(motor_id)}}, value);
}
// The controller serves currents of a motor list through "get_angles".
int Robot::get_current(unsigned long count, const int* motor_ids, double* values) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _queryValues("get_angles", {{"motor_ids", IdList(count, motor_ids)}}, values, count);
}
int Robot::get_current(unsigned long count, const int* motor_ids, std::vector<double>& values) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _queryValues("get_angles", {{"motor_ids", IdList(count, motor_ids)}}, values);
}
int Robot::get_current(double* values) {
  return _queryValues("get_current", {{"motor_ids", IdList(motorIds)}}, values, motorIds.size());
}
int Robot::get_current(std::vector<double>& values) {
  return _queryValues("get_current", {{"motor_ids", IdList(motorIds)}}, values);
}

int Robot::get_velocity(int motor_id, double& value) {
  return _queryValue("get_velocity", {{"motor_ids", IdList(motor_id)}}, value);
}
int Robot::get_velocity(unsigned long count, const int* motor_ids, double* values) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _queryValues("get_velocity", {{"motor_ids", IdList(count, motor_ids)}}, values, count);
}
int Robot::get_velocity(unsigned long count, const int* motor_ids, std::vector<double>& values) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _queryValues("get_velocity", {{"motor_ids", IdList(count, motor_ids)}}, values);
}
int Robot::get_velocity(double* values) {
  return get_velocity(motorIds.size(), motorIds.data(), values);
}
int Robot::get_velocity(std::vector<double>& values) {
  return get_velocity(motorIds.size(), motorIds.data(), values);
}

int Robot::get_angles(int motor_id, double& value) {
  return _queryValue("get_angles", {{"motor_ids", IdList(motor_id)}}, value);
}
// One and the same request as the list form of get_current.
int Robot::get_angles(unsigned long count, const int* motor_ids, double* values) {
  return get_current(count, motor_ids, values);
}
int Robot::get_angles(unsigned long count, const int* motor_ids, std::vector<double>& values) {
  return get_current(count, motor_ids, values);
}
int Robot::get_angles(double* values) {
  return get_angles(motorIds.size(), motorIds.data(), values);
}
int Robot::get_angles(std::vector<double>& values) {
  return get_angles(motorIds.size(), motorIds.data(), values);
}

int Robot::get_input(int motor_id, int& value) {
  return _queryValue("get_input", {{"motor_ids", IdList(motor_id)}}, value);
}
int Robot::get_input(unsigned long count, const int* motor_ids, int* values) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _queryValues("get_input", {{"motor_ids", IdList(count, motor_ids)}}, values, count);
}
int Robot::get_input(unsigned long count, const int* motor_ids, std::vector<int>& values) {
  if (!Arguments::Holds(count, motor_ids)) {
    return RobotEvents::kInvalidArgument;
  }
  return _queryValues("get_input", {{"motor_ids", IdList(count, motor_ids)}}, values);
}
int Robot::get_input(int* values) { return get_input(motorIds.size(), motorIds.data(), values); }
int Robot::get_input(std::vector<int>& values) {
  return get_input(motorIds.size(), motorIds.data(), values);
}

// The controller knows this query as "get_position".
int Robot::get_pose(_Pose& pose) { return _queryPose("get_position", {}, pose); }
