#include <gtest/gtest.h>

#include <cmath>

#include "model/CartesianPath.h"
#include "model/TrapezoidProfile.h"

namespace tavsim {
namespace {

TEST(TrapezoidProfile, PeaksEarlyOnShortWaysAndKeepsOrBrakesAStartingSpeed) {
  // 60 deg/s at most, 60 deg/s^2.
  for (const auto& [distance, startSpeed, duration] : std::vector<std::array<double, 3>>{
           {4.0, 0.0, 2.0 * std::sqrt(4.0 / 60.0)},            // from rest, too short to cruise
           {67.5, 30.0, 1.75},                                 // on to 60, cruise, stop
           {-10.0, 30.0, 0.5 + 2.0 * std::sqrt(17.5 / 60.0)},  // brake 7.5, back 17.5
           {1.0, 30.0, 0.5 + 2.0 * std::sqrt(6.5 / 60.0)},     // past it, back 6.5
           {80.0, 90.0, 1.5 + 12.5 / 60.0}}) {                 // down to 60, cruise, stop
    TrapezoidProfile profile(distance, 60.0, 60.0, startSpeed);
    EXPECT_NEAR(profile.Duration(), duration, 1e-9) << distance;
    EXPECT_NEAR(profile.Position(profile.Duration() - 1e-9), distance, 1e-6);
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
