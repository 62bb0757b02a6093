#include "Robot.h"
#include "robot/ParameterText.h"

// Joint angles in, one per cached motor id ("[]" before motor discovery).
int Robot::forward(const double* angles, _Pose& pose) {
  return _queryPose("forward", {{"angles", ParameterText::RealList(motorIds.size(), angles)}},
                    pose);
}

// One angle out per value the controller returns.
int Robot::inverse(_Pose pose, double* angles) {
  return _queryValues("inverse", {{"position", ParameterText::Pose(pose)}}, angles);
}
