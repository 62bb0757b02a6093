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
  return std::max(norm(a.translation - b.translation), rotationAngle(a.rotation, b.rotation));
}

TEST(ArmKinematics, ZeroPoseMatchesTheUr5Geometry) {
  // Stretched out along -x: the upper arm and forearm lengths, the shoulder and wrist offsets.
  Transform tool = ArmKinematics::ur5().forward({0, 0, 0, 0, 0, 0});
  EXPECT_NEAR(tool.translation.x, -0.425 - 0.39225, 1e-12);
  EXPECT_NEAR(tool.translation.y, -(0.10915 + 0.0823), 1e-12);
  EXPECT_NEAR(tool.translation.z, 0.089159 - 0.09465, 1e-12);
}

TEST(ArmKinematics, EveryBranchReachesTheTargetAndTheNearestIsChosen) {
  ArmKinematics arm = ArmKinematics::ur5();
  std::mt19937 rng(7);
  for (int trial = 0; trial < 300; ++trial) {
    SCOPED_TRACE(trial);
    const ArmKinematics::Joints joints = randomJoints(rng);
    const Transform target = arm.forward(joints);
    ASSERT_LE(arm.solutions(target).size(), 8u);
    // From where the arm stands (a solution itself, so the nearest) and from anywhere else,
    // no branch is closer than the chosen one; whole turns are free.
    for (const ArmKinematics::Joints& current : {joints, randomJoints(rng)}) {
      const auto nearest = arm.nearestSolution(target, current, 2 * kPi);
      ASSERT_TRUE(nearest.has_value());
      EXPECT_LT(transformError(arm.forward(*nearest), target), 1e-6);
      double chosen = 0.0;
      for (std::size_t i = 0; i < current.size(); ++i) {
        chosen += std::pow((*nearest)[i] - current[i], 2);
      }
      const auto branches = arm.solutions(target, current[5]);
      ASSERT_GE(branches.size(), 1u);
      for (const auto& branch : branches) {
        EXPECT_LT(transformError(arm.forward(branch), target), 1e-6);
        double distance = 0.0;
        for (std::size_t i = 0; i < current.size(); ++i) {
          distance += std::pow(wrapAngle(branch[i] - current[i]), 2);
        }
        EXPECT_LE(chosen, distance + 1e-9);
      }
    }
  }
}

TEST(ArmKinematics, OutOfReachPosesHaveNoSolution) {
  ArmKinematics arm = ArmKinematics::ur5();
  ArmKinematics::Joints current{};
  EXPECT_TRUE(arm.solutions(poseToTransform({2.0, 0.0, 0.3, 0, 0, 0})).empty());
  EXPECT_FALSE(arm.nearestSolution(poseToTransform({0.0, 0.0, 1.5, 0, 0, 0}), current, 2 * kPi));
}

TEST(Pose, RollPitchYawRoundTripsThroughAMatrixIncludingGimbalLock) {
  for (Pose pose : {Pose{0.1, -0.2, 0.3, 0.4, -0.5, 2.9}, Pose{0, 0, 0, -3.0, 1.2, -1.0},
                    Pose{0, 0, 0, 0.0, kPi / 2, 0.7}}) {
    Transform t = poseToTransform(pose);
    Pose back = transformToPose(t);
    EXPECT_LT(transformError(poseToTransform(back), t), 1e-9);
  }
  // Yaw about z turns the x axis towards y; roll about x turns y towards z.
  EXPECT_NEAR(rotationFromRpy(0, 0, kPi / 2).column(0).y, 1.0, 1e-12);
  EXPECT_NEAR(rotationFromRpy(kPi / 2, 0, 0).column(1).z, 1.0, 1e-12);
}

}  // namespace
}  // namespace tavsim
