#include <gtest/gtest.h>

#include <cmath>

#include "model/CartesianPath.h"
#include "model/Trajectory.h"
#include "model/TrapezoidProfile.h"

namespace tavsim {
namespace {

TEST(TrapezoidProfile, PeaksEarlyWhenTheWayIsTooShortToCruise) {
  TrapezoidProfile shortWay(4.0, 30.0, 16.0);  // triangular: 0.5 s up, 0.5 s down
  EXPECT_NEAR(shortWay.duration(), 1.0, 1e-12);
  EXPECT_NEAR(shortWay.velocity(0.5), 8.0, 1e-12);
  EXPECT_NEAR(shortWay.position(0.5), 2.0, 1e-12);
  EXPECT_EQ(shortWay.velocity(1.5), 0.0);
}

TEST(Trajectory, JointRampSynchronisesJointsAndChainsJoinUp) {
  std::vector<std::unique_ptr<Trajectory>> parts;
  parts.push_back(std::make_unique<JointRamp>(JointVector{0, 0}, JointVector{90, -45}, 30, 60));
  parts.push_back(std::make_unique<Dwell>(JointVector{90, -45}, 1.0));
  parts.push_back(std::make_unique<JointRamp>(JointVector{90, -45}, JointVector{0, 0}, 30, 60));
  TrajectoryChain chain(std::move(parts));
  EXPECT_NEAR(chain.duration(), 8.0, 1e-12);

  JointVector mid = chain.positionAt(1.75);
  EXPECT_NEAR(mid[1], -mid[0] / 2, 1e-12);
  JointVector velocity = chain.velocityAt(1.75);
  EXPECT_NEAR(velocity[0], 30.0, 1e-9);
  EXPECT_NEAR(velocity[1], -15.0, 1e-9);
  EXPECT_NEAR(chain.accelerationAt(0.25)[0], 60.0, 1e-6);
  EXPECT_EQ(chain.positionAt(4.0), (JointVector{90, -45}));
  EXPECT_EQ(chain.velocityAt(4.0), (JointVector{0, 0}));
  EXPECT_EQ(chain.positionAt(100.0), (JointVector{0, 0}));
}

TEST(CartesianPath, StopsAtUnblendedCornersAndRoundsBlendedOnes) {
  Transform start{Mat3{}, {0, 0, 0}};
  Transform a{Mat3{}, {0.2, 0, 0}};
  Transform b{Mat3{}, {0.2, 0.2, 0}};

  CartesianPath sharp(start, {{a, 0.0}, {b, 0.0}});
  ASSERT_EQ(sharp.runCount(), 2u);
  EXPECT_NEAR(sharp.runLength(0), 0.2, 1e-12);
  EXPECT_NEAR(sharp.poseAt(0, 0.2).translation.x, 0.2, 1e-12);

  CartesianPath rounded(start, {{a, 0.05}, {b, 0.0}});
  ASSERT_EQ(rounded.runCount(), 1u);
  // The corner is cut: shorter than the two legs, longer than the chord of the blend.
  EXPECT_LT(rounded.runLength(0), 0.4);
  EXPECT_GT(rounded.runLength(0), 0.3 + 0.05 * std::sqrt(2.0));
  Vec3 corner = rounded.poseAt(0, rounded.runLength(0) / 2).translation;
  EXPECT_LT(corner.x, 0.2);
  EXPECT_GT(corner.y, 0.0);
  EXPECT_NEAR(rounded.poseAt(0, rounded.runLength(0)).translation.y, 0.2, 1e-12);

  // A pure turn still has a length, so it can be timed.
  Transform turned{Mat3::rotZ(1.0), {0, 0, 0}};
  CartesianPath turn(start, {{turned, 0.0}});
  ASSERT_EQ(turn.runCount(), 1u);
  EXPECT_NEAR(turn.runLength(0), kRotationLever * 1.0, 1e-9);
}

}  // namespace
}  // namespace tavsim
