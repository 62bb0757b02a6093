#include <gtest/gtest.h>

#include <cmath>

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

TEST(TrapezoidProfile, AStartingSpeedIsKeptOrBrakedWhenItPointsAwayOrWouldOvershoot) {
  struct Row {
    double distance, startSpeed, duration;
  };
  // 60 deg/s at most, 60 deg/s^2.
  for (const Row& row :
       {Row{67.5, 30.0, 1.75},                                 // on to 60, cruise, stop
        Row{-10.0, 30.0, 0.5 + 2.0 * std::sqrt(17.5 / 60.0)},  // brake 7.5, back 17.5
        Row{1.0, 30.0, 0.5 + 2.0 * std::sqrt(6.5 / 60.0)},     // past it, back 6.5
        Row{80.0, 90.0, 1.5 + 12.5 / 60.0}}) {                 // down to 60, cruise, stop
    TrapezoidProfile profile(row.distance, 60.0, 60.0, row.startSpeed);
    EXPECT_NEAR(profile.Duration(), row.duration, 1e-9) << row.distance;
    EXPECT_EQ(profile.Velocity(0.0), row.startSpeed);
    EXPECT_NEAR(profile.Position(profile.Duration() - 1e-9), row.distance, 1e-6);
  }
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
