#include <gtest/gtest.h>

#include "model/CartesianPath.h"
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

// Blends are followed in ControllerCartesianTest; here the cuts into runs.
TEST(CartesianPath, StopsAtUnblendedCornersAndTimesPureTurns) {
  const Transform start{Mat3{}, {0, 0, 0}};
  const Transform a{Mat3{}, {0.2, 0, 0}};
  const Transform b{Mat3{}, {0.2, 0.2, 0}};
  EXPECT_EQ(CartesianPath(start, {{a, 0.0}, {b, 0.0}}).runCount(), 2u);
  EXPECT_EQ(CartesianPath(start, {{a, 0.05}, {b, 0.0}}).runCount(), 1u);
  CartesianPath turn(start, {{Transform{Mat3::rotZ(1.0), {0, 0, 0}}, 0.0}});
  ASSERT_EQ(turn.runCount(), 1u);
  EXPECT_NEAR(turn.runLength(0), kRotationLever * 1.0, 1e-9) << "a pure turn still has a length";
}

}  // namespace
}  // namespace tavsim
