// Each cycle's take-over move, played against the simulator's own motion profile with no
// clock: one joint keeps to a path, comes to rest on its last point, and stops by itself when
// set-points stop coming.
#include <gtest/gtest.h>

#include <cmath>

#include "model/TrapezoidProfile.h"
#include "trajectory/JointSpline.h"
#include "trajectory/SetpointChooser.h"

namespace {

using tavclient::JointSpline;
using tavclient::Setpoint;
using tavclient::SetpointChooser;

constexpr double kCycle = 0.008;
constexpr double kMaxVelocity = 180.0;
constexpr double kMaxAcceleration = 2291.83;

// One joint as the simulator moves it: each move is a profile from where it is, at its speed.
struct Joint {
  double position = 0.0;
  double velocity = 0.0;

  void Run(const Setpoint& setpoint, double seconds) {
    const tavsim::TrapezoidProfile profile(setpoint.target - position, setpoint.velocity,
                                           setpoint.acceleration, velocity);
    velocity = profile.Velocity(seconds);
    position += profile.Position(seconds);
  }
};

double At(const JointSpline& path, double t) {
  std::vector<double> position;
  std::vector<double> velocity;
  path.Evaluate(t, position, velocity);
  return position[0];
}

TEST(SetpointChooserTest, KeepsAJointOnItsPathAndOntoItsLastPoint) {
  // Out and back part of the way, through a turn, at up to about 120 deg/s.
  const JointSpline path({0.0, 0.6, 1.2, 2.0}, {{0.0}, {60.0}, {20.0}, {45.0}}, {{}, {}, {}, {}});
  const SetpointChooser chooser(kCycle, {kMaxVelocity}, {kMaxAcceleration});
  Joint joint;
  double largest = 0.0;
  for (double t = 0.0; t < 2.2; t += kCycle) {
    const Setpoint setpoint = chooser.Choose(0, At(path, t), At(path, t + kCycle), joint.position,
                                             joint.velocity, t + kCycle >= 2.0, 45.0);
    EXPECT_GT(setpoint.velocity, 0.0f);
    EXPECT_LE(setpoint.velocity, kMaxVelocity);
    EXPECT_LE(setpoint.acceleration, kMaxAcceleration);
    joint.Run(setpoint, kCycle);
    largest = std::max(largest, std::abs(joint.position - At(path, t + kCycle)));
  }
  EXPECT_LT(largest, 0.1);
  EXPECT_NEAR(joint.position, 45.0, 1e-9);
  EXPECT_EQ(joint.velocity, 0.0);
}

TEST(SetpointChooserTest, AJointLeftWithoutSetPointsStopsWithinAFewCycles) {
  const SetpointChooser chooser(kCycle, {kMaxVelocity}, {kMaxAcceleration});
  Joint joint{10.0, 100.0};
  // The path runs on at 100 deg/s; this is the last set-point that comes.
  const Setpoint setpoint = chooser.Choose(0, 10.0, 10.8, 10.0, 100.0, false, 300.0);
  joint.Run(setpoint, 1.0);
  EXPECT_EQ(joint.velocity, 0.0);
  EXPECT_GT(joint.position, 10.0 + 100.0 * 2 * kCycle);
  EXPECT_LT(joint.position, 10.0 + 100.0 * 4 * kCycle + 100.0 * 100.0 / kMaxAcceleration);
}

TEST(SetpointChooserTest, SendsCeilingsThatDoNotRoundAboveThemselves) {
  const SetpointChooser chooser(kCycle, {kMaxVelocity}, {kMaxAcceleration});
  // Far behind: the speed wanted is clamped to the limit.
  const Setpoint setpoint = chooser.Choose(0, 100.0, 101.0, 0.0, 0.0, false, 200.0);
  EXPECT_LE(static_cast<double>(setpoint.velocity), kMaxVelocity);
  EXPECT_LE(static_cast<double>(setpoint.acceleration), kMaxAcceleration);
  EXPECT_GT(static_cast<double>(setpoint.acceleration), kMaxAcceleration - 1e-3);
}

}  // namespace
