#include "model/CurrentModel.h"

#include <cmath>

namespace tavsim {

namespace {

constexpr double kGravity = 9.81;
// Shoulder, upper arm, forearm, wrist 1, wrist 2, wrist 3 (kg).
constexpr std::array<double, ArmKinematics::kJoints> kLinkMass{3.7,   8.393, 2.275,
                                                               1.219, 1.219, 0.1879};

}  // namespace

CurrentModel::CurrentModel(const ArmKinematics& model) : kinematics(model) {}

std::array<double, ArmKinematics::kJoints> CurrentModel::GravityTorques(
    const JointVector& degrees) const {
  auto frames = kinematics.Frames(JointsFromDegrees(degrees));
  std::array<double, ArmKinematics::kJoints> torques{};
  // Joint j turns about the z axis of frame j-1 and carries links j..6.
  for (std::size_t j = 0; j < ArmKinematics::kJoints; ++j) {
    const Vec3& pivot = frames[j].translation;
    Vec3 axis = frames[j].rotation.Column(2);
    Vec3 moment;
    for (std::size_t link = j; link < ArmKinematics::kJoints; ++link) {
      Vec3 centre = 0.5 * (frames[link].translation + frames[link + 1].translation);
      Vec3 weight{0.0, 0.0, -kLinkMass[link] * kGravity};
      moment = moment + Cross(centre - pivot, weight);
    }
    torques[j] = Dot(axis, moment);
  }
  return torques;
}

double CurrentModel::Current(double gravityTorque, double velocity, double acceleration) {
  return kIdleAmps + std::abs(gravityTorque) / kTorquePerAmp + kFrictionAmps * std::abs(velocity) +
         kInertiaAmps * std::abs(acceleration);
}

}  // namespace tavsim
