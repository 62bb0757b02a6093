#ifndef TAVSIM_MODEL_POSE_H
#define TAVSIM_MODEL_POSE_H

#include "model/Geometry.h"

namespace tavsim {

// Tool pose in the base frame: position in metres, orientation as roll, pitch, yaw in radians
// about the fixed base axes X, then Y, then Z: R = Rz(yaw) * Ry(pitch) * Rx(roll).
struct Pose {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  double roll = 0.0;
  double pitch = 0.0;
  double yaw = 0.0;
};

Mat3 RotationFromRpy(double roll, double pitch, double yaw);
Transform PoseToTransform(const Pose& pose);
// At pitch = +-pi/2 roll and yaw are not separable; roll is then reported as 0.
Pose TransformToPose(const Transform& transform);

}  // namespace tavsim

#endif
