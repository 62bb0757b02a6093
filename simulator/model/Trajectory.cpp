#include "model/Trajectory.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavsim {

namespace {

constexpr double kVelocityStep = 1e-3;
constexpr double kAccelerationStep = 5e-3;

JointVector difference(const JointVector& later, const JointVector& earlier, double seconds) {
  JointVector rate(later.size(), 0.0);
  for (std::size_t i = 0; i < later.size(); ++i) {
    rate[i] = (later[i] - earlier[i]) / seconds;
  }
  return rate;
}

JointVector resting(const Trajectory& trajectory, double t) {
  return JointVector(trajectory.positionAt(t).size(), 0.0);
}

}  // namespace

JointVector Trajectory::velocityAt(double t) const {
  double end = duration();
  if (t <= 0.0 || t >= end) {
    return resting(*this, t);
  }
  double before = std::max(0.0, t - kVelocityStep);
  double after = std::min(end, t + kVelocityStep);
  return difference(positionAt(after), positionAt(before), after - before);
}

JointVector Trajectory::accelerationAt(double t) const {
  if (t <= 0.0 || t >= duration()) {
    return resting(*this, t);
  }
  return difference(velocityAt(t + kAccelerationStep), velocityAt(t - kAccelerationStep),
                    2.0 * kAccelerationStep);
}

JointRamp::JointRamp(JointVector from, JointVector to, double velocity, double acceleration)
    : from_(std::move(from)),
      delta_(difference(to, from_, 1.0)),
      length_(0.0),
      profile_(0.0, velocity, acceleration) {
  for (double d : delta_) {
    length_ = std::max(length_, std::abs(d));
  }
  profile_ = TrapezoidProfile(length_, velocity, acceleration);
}

JointVector JointRamp::positionAt(double t) const {
  double fraction = length_ > 0.0 ? profile_.position(t) / length_ : 0.0;
  JointVector position(from_.size(), 0.0);
  for (std::size_t i = 0; i < from_.size(); ++i) {
    position[i] = from_[i] + delta_[i] * fraction;
  }
  return position;
}

JointVector JointRamp::velocityAt(double t) const {
  double rate = length_ > 0.0 ? profile_.velocity(t) / length_ : 0.0;
  JointVector velocity(delta_.size(), 0.0);
  for (std::size_t i = 0; i < delta_.size(); ++i) {
    velocity[i] = delta_[i] * rate;
  }
  return velocity;
}

Dwell::Dwell(JointVector at, double seconds) : at_(std::move(at)), seconds_(seconds) {}

SampledTrajectory::SampledTrajectory(double step, std::vector<JointVector> samples)
    : step_(step), samples_(std::move(samples)) {}

double SampledTrajectory::duration() const {
  return step_ * static_cast<double>(samples_.size() - 1);
}

JointVector SampledTrajectory::positionAt(double t) const {
  if (t <= 0.0) {
    return samples_.front();
  }
  if (t >= duration()) {
    return samples_.back();
  }
  double scaled = t / step_;
  auto index = static_cast<std::size_t>(scaled);
  double u = scaled - static_cast<double>(index);
  const JointVector& a = samples_[index];
  const JointVector& b = samples_[index + 1];
  JointVector position(a.size(), 0.0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    position[i] = a[i] + (b[i] - a[i]) * u;
  }
  return position;
}

TrajectoryChain::TrajectoryChain(std::vector<std::unique_ptr<Trajectory>> parts)
    : parts_(std::move(parts)) {
  for (const auto& part : parts_) {
    starts_.push_back(duration_);
    duration_ += part->duration();
  }
}

const Trajectory& TrajectoryChain::partAt(double t, double& local) const {
  auto after = std::upper_bound(starts_.begin(), starts_.end(), t);
  std::size_t index = after == starts_.begin() ? 0 : static_cast<std::size_t>(after - starts_.begin()) - 1;
  local = t - starts_[index];
  return *parts_[index];
}

JointVector TrajectoryChain::positionAt(double t) const {
  double local = 0.0;
  const Trajectory& part = partAt(t, local);
  return part.positionAt(local);
}

JointVector TrajectoryChain::velocityAt(double t) const {
  double local = 0.0;
  const Trajectory& part = partAt(t, local);
  return part.velocityAt(local);
}

}  // namespace tavsim
