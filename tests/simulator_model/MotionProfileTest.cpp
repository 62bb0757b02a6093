#include <gtest/gtest.h>

#include "model/CartesianPath.h"
#include "model/TrapezoidProfile.h"

namespace tavsim {
namespace {

TEST(TrapezoidProfile, PeaksEarlyWhenTheWayIsTooShortToCruise) {
  TrapezoidProfile shortWay(4.0, 30.0, 16.0);  // triangular: 0.5 s up, 0.5 s down
  EXPECT_NEAR(shortWay.Duration(), 1.0, 1e-12);
  EXPECT_NEAR(shortWay.Velocity(0.5), 8.0, 1e-12);
  EXPECT_NEAR(shortWay.Position(0.5), 2.0, 1e-12);
  EXPECT_EQ(shortWay.Velocity(1.5), 0.0);
}

// Blends are followed in ControllerCartesianTest; here the cuts into runs.
TEST(CartesianPath, StopsAtUnblendedCornersAndTimesPureTurns) {
  const Transform start{Mat3{}, {0, 0, 0}};
  const Transform a{Mat3{}, {0.2, 0, 0}};
  const Transform b{Mat3{}, {0.2, 0.2, 0}};
  EXPECT_EQ(CartesianPath(start, {{a, 0.0}, {b, 0.0}}).RunCount(), 2u);
  EXPECT_EQ(CartesianPath(start, {{a, 0.05}, {b, 0.0}}).RunCount(), 1u);
  CartesianPath turn(start, {{Transform{Mat3::RotZ(1.0), {0, 0, 0}}, 0.0}});
  ASSERT_EQ(turn.RunCount(), 1u);
  EXPECT_NEAR(turn.RunLength(0), kRotationLever * 1.0, 1e-9) << "a pure turn still has a length";
}

}  // namespace
}  // namespace tavsim
