#include "trajectory/SetpointChooser.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavclient {

namespace {

// Share of the position error corrected over one cycle.
constexpr double kCorrection = 0.5;
// Cycles of way before the target: the moves that a late cycle still finds running.
constexpr double kLookaheadCycles = 3.0;
// The slowest speed asked for, in deg/s: a move needs one above zero.
constexpr double kCrawl = 0.01;
constexpr double kJointRange = 360.0;

// The largest float that does not exceed `limit`: a ceiling sent in single precision must not
// round above itself.
float FloatAtMost(double limit) {
  float value = static_cast<float>(limit);
  return static_cast<double>(value) > limit ? std::nextafter(value, 0.0f) : value;
}

}  // namespace

SetpointChooser::SetpointChooser(double period, std::vector<double> velocityLimits,
                                 std::vector<double> accelerationLimits)
    : cycle(period),
      maxVelocity(std::move(velocityLimits)),
      maxAcceleration(std::move(accelerationLimits)) {}

Setpoint SetpointChooser::Choose(std::size_t joint, double desiredNow, double desiredNext,
                                 double position, double speed, bool finishing, double last) const {
  const double limit = maxVelocity[joint];
  const double acceleration = maxAcceleration[joint];
  double wanted =
      (desiredNext - desiredNow) / cycle + kCorrection * (desiredNow - position) / cycle;
  wanted = std::clamp(wanted, -limit, limit);

  Setpoint setpoint;
  setpoint.acceleration = FloatAtMost(acceleration);
  setpoint.velocity = std::max(FloatAtMost(std::abs(wanted)), static_cast<float>(kCrawl));
  if (finishing) {
    setpoint.target = last;
    return setpoint;
  }
  const double fastest = std::max(std::abs(wanted), std::abs(speed));
  const double room =
      std::abs(wanted) * kLookaheadCycles * cycle + fastest * fastest / (2.0 * acceleration);
  setpoint.target = std::clamp(position + (wanted < 0.0 ? -room : room), -kJointRange, kJointRange);
  return setpoint;
}

}  // namespace tavclient
