#include "model/TrapezoidProfile.h"

#include <cmath>

namespace tavsim {

TrapezoidProfile::TrapezoidProfile(double distance, double maxVelocity, double acceleration)
    : distance_(distance), acceleration_(acceleration) {
  double rampDistance = maxVelocity * maxVelocity / acceleration;
  if (distance >= rampDistance) {
    peakVelocity_ = maxVelocity;
    rampTime_ = maxVelocity / acceleration;
    cruiseTime_ = (distance - rampDistance) / maxVelocity;
  } else {
    rampTime_ = std::sqrt(distance / acceleration);
    peakVelocity_ = acceleration * rampTime_;
    cruiseTime_ = 0.0;
  }
}

double TrapezoidProfile::position(double t) const {
  if (t <= 0.0) {
    return 0.0;
  }
  if (t >= duration()) {
    return distance_;
  }
  if (t < rampTime_) {
    return 0.5 * acceleration_ * t * t;
  }
  double rampDistance = 0.5 * acceleration_ * rampTime_ * rampTime_;
  if (t < rampTime_ + cruiseTime_) {
    return rampDistance + peakVelocity_ * (t - rampTime_);
  }
  double left = duration() - t;
  return distance_ - 0.5 * acceleration_ * left * left;
}

double TrapezoidProfile::velocity(double t) const {
  if (t <= 0.0 || t >= duration()) {
    return 0.0;
  }
  if (t < rampTime_) {
    return acceleration_ * t;
  }
  if (t < rampTime_ + cruiseTime_) {
    return peakVelocity_;
  }
  return acceleration_ * (duration() - t);
}

}  // namespace tavsim
