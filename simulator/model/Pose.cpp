#include "model/Pose.h"

#include <cmath>

namespace tavsim {

Mat3 RotationFromRpy(double roll, double pitch, double yaw) {
  return Mat3::RotZ(yaw) * Mat3::RotY(pitch) * Mat3::RotX(roll);
}

Transform PoseToTransform(const Pose& pose) {
  return {RotationFromRpy(pose.roll, pose.pitch, pose.yaw), {pose.x, pose.y, pose.z}};
}

Pose TransformToPose(const Transform& transform) {
  const Mat3& r = transform.rotation;
  Pose pose{transform.translation.x, transform.translation.y, transform.translation.z, 0, 0, 0};
  double horizontal = std::hypot(r(0, 0), r(1, 0));
  pose.pitch = std::atan2(-r(2, 0), horizontal);
  if (horizontal > 1e-9) {
    pose.roll = std::atan2(r(2, 1), r(2, 2));
    pose.yaw = std::atan2(r(1, 0), r(0, 0));
  } else {
    pose.yaw = std::atan2(-r(0, 1), r(1, 1));
  }
  return pose;
}

}  // namespace tavsim
