#include "Robot.h"
#include "robot/Arguments.h"
#include "robot/ParameterText.h"

namespace {
constexpr size_t kArmJoints = 6;
}

// Joint angles in, one per cached motor id ("[]" before motor discovery).
int Robot::forward(const double* angles, _Pose& pose) {
  if (!Arguments::Holds(motorIds.size(), angles)) {
    return RobotEvents::kInvalidArgument;
  }
  return _queryPose("forward", {{"angles", ParameterText::RealList(motorIds.size(), angles)}},
                    pose);
}

// One angle out per value the controller returns, at most one per cached motor id: before
// motor discovery, the arm's six joints.
int Robot::inverse(_Pose pose, double* angles) {
  const size_t capacity = motorIds.empty() ? kArmJoints : motorIds.size();
  return _queryValues("inverse", {{"position", ParameterText::Pose(pose)}}, angles, capacity);
}

int Robot::inverse(_Pose pose, std::vector<double>& angles) {
  return _queryValues("inverse", {{"position", ParameterText::Pose(pose)}}, angles);
}
