#ifndef TAVSIM_MODEL_CURRENTMODEL_H
#define TAVSIM_MODEL_CURRENTMODEL_H

#include <array>

#include "model/ArmKinematics.h"
#include "model/Trajectory.h"

namespace tavsim {

// Motor current of a powered joint, in amperes:
//   idle + |gravity torque| / torque-per-amp + friction * |velocity| + inertia * |acceleration|
// The gravity torque on each joint comes from the UR5's published link masses, each lumped at
// the middle of its link, evaluated in the arm's current configuration. A released motor
// draws nothing; motors beyond the sixth carry no arm load.
class CurrentModel {
public:
  static constexpr double kIdleAmps = 0.3;
  static constexpr double kTorquePerAmp = 10.0;   // N*m per A at the joint output
  static constexpr double kFrictionAmps = 0.002;  // A per deg/s
  static constexpr double kInertiaAmps = 0.004;   // A per deg/s^2

  explicit CurrentModel(const ArmKinematics& kinematics);

  // Gravity torque about each arm joint's axis (N*m) with the joints at `degrees`.
  std::array<double, ArmKinematics::kJoints> GravityTorques(const JointVector& degrees) const;
  static double Current(double gravityTorque, double velocity, double acceleration);

private:
  const ArmKinematics& kinematics;
};

}  // namespace tavsim

#endif
