#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "model/ArmKinematics.h"
#include "model/Pose.h"

namespace tavsim {
namespace {

ArmKinematics::Joints randomJoints(std::mt19937& rng) {
  std::uniform_real_distribution<double> angle(-kPi, kPi);
  ArmKinematics::Joints joints{};
  for (double& joint : joints) {
    joint = angle(rng);
  }
  return joints;
}

double transformError(const Transform& a, const Transform& b) {
  return std::max(Norm(a.translation - b.translation), RotationAngle(a.rotation, b.rotation));
}

TEST(ArmKinematics, ZeroPoseMatchesTheUr5Geometry) {
  // Stretched out along -x: the upper arm and forearm lengths, the shoulder and wrist offsets.
  Transform tool = ArmKinematics::Ur5().Forward({0, 0, 0, 0, 0, 0});
  EXPECT_NEAR(tool.translation.x, -0.425 - 0.39225, 1e-12);
  EXPECT_NEAR(tool.translation.y, -(0.10915 + 0.0823), 1e-12);
  EXPECT_NEAR(tool.translation.z, 0.089159 - 0.09465, 1e-12);
}

TEST(ArmKinematics, EveryBranchReachesTheTargetAndTheNearestIsChosen) {
  ArmKinematics arm = ArmKinematics::Ur5();
  std::mt19937 rng(7);
  for (int trial = 0; trial < 300; ++trial) {
    SCOPED_TRACE(trial);
    const ArmKinematics::Joints joints = randomJoints(rng);
    const Transform target = arm.Forward(joints);
    // From where the arm stands (a solution itself, so the nearest) and from anywhere else,
    // no branch is closer than the chosen one; whole turns are free.
    for (const ArmKinematics::Joints& current : {joints, randomJoints(rng)}) {
      const auto nearest = arm.NearestSolution(target, current, 2 * kPi);
      ASSERT_TRUE(nearest.has_value());
      EXPECT_LT(transformError(arm.Forward(*nearest), target), 1e-6);
      double chosen = 0.0;
      for (std::size_t i = 0; i < current.size(); ++i) {
        chosen += std::pow((*nearest)[i] - current[i], 2);
      }
      const auto branches = arm.Solutions(target, current[5]);
      ASSERT_GE(branches.size(), 1u);
      for (const auto& branch : branches) {
        EXPECT_LT(transformError(arm.Forward(branch), target), 1e-6);
        double distance = 0.0;
        for (std::size_t i = 0; i < current.size(); ++i) {
          distance += std::pow(WrapAngle(branch[i] - current[i]), 2);
        }
        EXPECT_LE(chosen, distance + 1e-9);
      }
    }
  }
}

TEST(ArmKinematics, WristSingularPosesAreSolvedWithJoint6KeptAtTheHint) {
  ArmKinematics arm = ArmKinematics::Ur5();
  std::mt19937 rng(11);
  for (int trial = 0; trial < 250; ++trial) {
    ArmKinematics::Joints joints = randomJoints(rng);
    joints[4] = trial % 2 == 0 ? 0.0 : kPi;
    const Transform target = arm.Forward(joints);
    const auto solved = arm.NearestSolution(target, randomJoints(rng), 2 * kPi);
    ASSERT_TRUE(solved.has_value()) << "trial " << trial;
    EXPECT_LT(transformError(arm.Forward(*solved), target), 1e-6);
    EXPECT_NEAR((*arm.NearestSolution(target, joints, 2 * kPi))[5], joints[5], 1e-12)
        << "the hint can be kept";
  }
}

TEST(Pose, RollPitchYawRoundTripsThroughAMatrixIncludingGimbalLock) {
  for (Pose pose : {Pose{0.1, -0.2, 0.3, 0.4, -0.5, 2.9}, Pose{0, 0, 0, -3.0, 1.2, -1.0},
                    Pose{0, 0, 0, 0.0, kPi / 2, 0.7}}) {
    Transform t = PoseToTransform(pose);
    Pose back = TransformToPose(t);
    EXPECT_LT(transformError(PoseToTransform(back), t), 1e-9);
  }
  // Yaw about z turns the x axis towards y; roll about x turns y towards z.
  EXPECT_NEAR(RotationFromRpy(0, 0, kPi / 2).Column(0).y, 1.0, 1e-12);
  EXPECT_NEAR(RotationFromRpy(kPi / 2, 0, 0).Column(1).z, 1.0, 1e-12);
}

}  // namespace
}  // namespace tavsim
