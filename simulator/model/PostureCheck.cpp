#include "model/PostureCheck.h"

#include <cmath>

namespace tavsim {

namespace {

constexpr std::size_t kElbow = 2;
// Rounding that must not make a posture resting on the floor fail.
constexpr double kFloorTolerance = 1e-9;

}  // namespace

PostureCheck::PostureCheck(const ArmKinematics& armKinematics, const ArmLimits& armLimits)
    : kinematics(armKinematics), limits(armLimits) {}

bool PostureCheck::Allows(const ArmKinematics::Joints& radians) const {
  if (limits.foldLimit > 0.0 &&
      std::abs(WrapAngle(radians[kElbow])) > kPi - DegToRad(limits.foldLimit)) {
    return false;
  }
  if (!limits.floor) {
    return true;
  }
  const auto frames = kinematics.Frames(radians);
  for (std::size_t i = 1; i < frames.size(); ++i) {
    if (frames[i].translation.z < *limits.floor - kFloorTolerance) {
      return false;
    }
  }
  return true;
}

}  // namespace tavsim
