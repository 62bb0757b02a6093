#include "model/TrapezoidProfile.h"

#include <algorithm>
#include <cmath>

namespace tavsim {

namespace {

double SignOf(double value) { return value < 0.0 ? -1.0 : 1.0; }

}  // namespace

TrapezoidProfile::TrapezoidProfile(double goal, double maxVelocity, double maxAcceleration,
                                   double startVelocity)
    : distance(goal),
      acceleration(maxAcceleration),
      initialVelocity(startVelocity),
      endVelocity(startVelocity) {
  double left = distance;
  // Moving away from the goal, or too fast to stop before it: brake to rest first.
  bool away = endVelocity * left < 0.0;
  bool overshoots =
      endVelocity * endVelocity / (2.0 * acceleration) > std::abs(left) * (1.0 + 1e-12);
  if (endVelocity != 0.0 && (away || overshoots)) {
    _add(std::abs(endVelocity) / acceleration, -SignOf(endVelocity) * acceleration);
    endVelocity = 0.0;
    left = distance - endPosition;
  }
  double direction = SignOf(left);
  double way = std::abs(left);
  double speed = std::abs(endVelocity);
  double peak = speed > maxVelocity
                    ? maxVelocity
                    : std::min(maxVelocity, std::sqrt(acceleration * way + speed * speed / 2.0));
  double rampDistance = (peak + speed) / 2.0 * std::abs(peak - speed) / acceleration;
  double cruise = std::max(0.0, way - rampDistance - peak * peak / (2.0 * acceleration));
  _add(std::abs(peak - speed) / acceleration, direction * SignOf(peak - speed) * acceleration);
  if (peak > 0.0) {
    _add(cruise / peak, 0.0);
  }
  _add(peak / acceleration, -direction * acceleration);
}

void TrapezoidProfile::_add(double seconds, double phaseAcceleration) {
  if (seconds <= 0.0) {
    return;
  }
  phases.push_back({duration, endPosition, endVelocity, phaseAcceleration});
  endPosition += endVelocity * seconds + 0.5 * phaseAcceleration * seconds * seconds;
  endVelocity += phaseAcceleration * seconds;
  duration += seconds;
}

const TrapezoidProfile::Phase& TrapezoidProfile::_phaseAt(double t) const {
  auto after = std::upper_bound(phases.begin(), phases.end(), t,
                                [](double time, const Phase& phase) { return time < phase.start; });
  return after == phases.begin() ? phases.front() : *(after - 1);
}

double TrapezoidProfile::Position(double t) const {
  if (t <= 0.0 || phases.empty()) {
    return 0.0;
  }
  if (t >= duration) {
    return distance;
  }
  const Phase& phase = _phaseAt(t);
  double local = t - phase.start;
  return phase.position + phase.velocity * local + 0.5 * phase.acceleration * local * local;
}

double TrapezoidProfile::Velocity(double t) const {
  if (t >= duration) {
    return 0.0;
  }
  if (t <= 0.0) {
    return initialVelocity;
  }
  const Phase& phase = _phaseAt(t);
  return phase.velocity + phase.acceleration * (t - phase.start);
}

}  // namespace tavsim
