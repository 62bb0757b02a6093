#include "model/Trajectory.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavsim {

namespace {

constexpr double kVelocityStep = 1e-3;
constexpr double kAccelerationStep = 5e-3;

JointVector Difference(const JointVector& later, const JointVector& earlier, double seconds) {
  JointVector rate(later.size(), 0.0);
  for (std::size_t i = 0; i < later.size(); ++i) {
    rate[i] = (later[i] - earlier[i]) / seconds;
  }
  return rate;
}

JointVector Resting(const Trajectory& trajectory, double t) {
  return JointVector(trajectory.PositionAt(t).size(), 0.0);
}

}  // namespace

JointVector Trajectory::VelocityAt(double t) const {
  double end = Duration();
  if (t <= 0.0 || t >= end) {
    return Resting(*this, t);
  }
  double before = std::max(0.0, t - kVelocityStep);
  double after = std::min(end, t + kVelocityStep);
  return Difference(PositionAt(after), PositionAt(before), after - before);
}

JointVector Trajectory::AccelerationAt(double t) const {
  if (t <= 0.0 || t >= Duration()) {
    return Resting(*this, t);
  }
  return Difference(VelocityAt(t + kAccelerationStep), VelocityAt(t - kAccelerationStep),
                    2.0 * kAccelerationStep);
}

bool JointState::Moving() const {
  return std::any_of(velocity.begin(), velocity.end(), [](double v) { return v != 0.0; });
}

JointRamp::JointRamp(JointVector start, JointVector to, double velocity, double acceleration,
                     double initialRate)
    : from(std::move(start)),
      delta(Difference(to, from, 1.0)),
      length(0.0),
      profile(0.0, velocity, acceleration) {
  for (double d : delta) {
    length = std::max(length, std::abs(d));
  }
  profile = TrapezoidProfile(length, velocity, acceleration, initialRate);
}

JointVector JointRamp::PositionAt(double t) const {
  double fraction = length > 0.0 ? profile.Position(t) / length : 0.0;
  JointVector position(from.size(), 0.0);
  for (std::size_t i = 0; i < from.size(); ++i) {
    position[i] = from[i] + delta[i] * fraction;
  }
  return position;
}

JointVector JointRamp::VelocityAt(double t) const {
  double rate = length > 0.0 ? profile.Velocity(t) / length : 0.0;
  JointVector velocity(delta.size(), 0.0);
  for (std::size_t i = 0; i < delta.size(); ++i) {
    velocity[i] = delta[i] * rate;
  }
  return velocity;
}

JointVector JointRamp::StoppingTimeAt(double t) const {
  return JointVector(delta.size(), std::abs(profile.Velocity(t)) / profile.Acceleration());
}

Dwell::Dwell(JointVector where, double duration) : at(std::move(where)), seconds(duration) {}

Brake::Brake(JointState start) : from(std::move(start)) {
  for (double& seconds : from.stoppingTime) {
    seconds = std::max(0.0, seconds);
    duration = std::max(duration, seconds);
  }
}

JointVector Brake::PositionAt(double t) const {
  JointVector position = from.position;
  for (std::size_t i = 0; i < position.size(); ++i) {
    double stop = from.stoppingTime[i];
    double elapsed = std::clamp(t, 0.0, stop);
    if (stop > 0.0) {
      position[i] += from.velocity[i] * (elapsed - elapsed * elapsed / (2.0 * stop));
    }
  }
  return position;
}

JointVector Brake::VelocityAt(double t) const {
  JointVector velocity(from.velocity.size(), 0.0);
  for (std::size_t i = 0; i < velocity.size(); ++i) {
    double stop = from.stoppingTime[i];
    if (t >= 0.0 && t < stop) {
      velocity[i] = from.velocity[i] * (1.0 - t / stop);
    }
  }
  return velocity;
}

JointVector Brake::StoppingTimeAt(double t) const {
  JointVector left(from.stoppingTime.size(), 0.0);
  for (std::size_t i = 0; i < left.size(); ++i) {
    left[i] = std::max(0.0, from.stoppingTime[i] - std::max(0.0, t));
  }
  return left;
}

SampledTrajectory::SampledTrajectory(double interval, std::vector<JointVector> points,
                                     TrapezoidProfile speed)
    : step(interval), samples(std::move(points)), timing(std::move(speed)) {}

JointVector SampledTrajectory::StoppingTimeAt(double t) const {
  return JointVector(samples.front().size(), std::abs(timing.Velocity(t)) / timing.Acceleration());
}

double SampledTrajectory::Duration() const {
  return step * static_cast<double>(samples.size() - 1);
}

JointVector SampledTrajectory::PositionAt(double t) const {
  if (t <= 0.0) {
    return samples.front();
  }
  if (t >= Duration()) {
    return samples.back();
  }
  double scaled = t / step;
  auto index = static_cast<std::size_t>(scaled);
  double u = scaled - static_cast<double>(index);
  const JointVector& a = samples[index];
  const JointVector& b = samples[index + 1];
  JointVector position(a.size(), 0.0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    position[i] = a[i] + (b[i] - a[i]) * u;
  }
  return position;
}

TrajectoryChain::TrajectoryChain(std::vector<std::unique_ptr<Trajectory>> pieces)
    : parts(std::move(pieces)) {
  for (const auto& part : parts) {
    starts.push_back(duration);
    duration += part->Duration();
  }
}

const Trajectory& TrajectoryChain::_partAt(double t, double& local) const {
  auto after = std::upper_bound(starts.begin(), starts.end(), t);
  std::size_t index =
      after == starts.begin() ? 0 : static_cast<std::size_t>(after - starts.begin()) - 1;
  local = t - starts[index];
  return *parts[index];
}

JointVector TrajectoryChain::PositionAt(double t) const {
  double local = 0.0;
  const Trajectory& part = _partAt(t, local);
  return part.PositionAt(local);
}

JointVector TrajectoryChain::VelocityAt(double t) const {
  double local = 0.0;
  const Trajectory& part = _partAt(t, local);
  return part.VelocityAt(local);
}

JointVector TrajectoryChain::StoppingTimeAt(double t) const {
  double local = 0.0;
  const Trajectory& part = _partAt(t, local);
  return part.StoppingTimeAt(local);
}

}  // namespace tavsim
