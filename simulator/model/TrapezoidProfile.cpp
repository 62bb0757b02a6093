#include "model/TrapezoidProfile.h"

#include <cmath>

namespace tavsim {

TrapezoidProfile::TrapezoidProfile(double length, double maxVelocity, double rate)
    : distance(length), acceleration(rate) {
  double rampDistance = maxVelocity * maxVelocity / acceleration;
  if (distance >= rampDistance) {
    peakVelocity = maxVelocity;
    rampTime = maxVelocity / acceleration;
    cruiseTime = (distance - rampDistance) / maxVelocity;
  } else {
    rampTime = std::sqrt(distance / acceleration);
    peakVelocity = acceleration * rampTime;
    cruiseTime = 0.0;
  }
}

double TrapezoidProfile::Position(double t) const {
  if (t <= 0.0) {
    return 0.0;
  }
  if (t >= Duration()) {
    return distance;
  }
  if (t < rampTime) {
    return 0.5 * acceleration * t * t;
  }
  double rampDistance = 0.5 * acceleration * rampTime * rampTime;
  if (t < rampTime + cruiseTime) {
    return rampDistance + peakVelocity * (t - rampTime);
  }
  double left = Duration() - t;
  return distance - 0.5 * acceleration * left * left;
}

double TrapezoidProfile::Velocity(double t) const {
  if (t <= 0.0 || t >= Duration()) {
    return 0.0;
  }
  if (t < rampTime) {
    return acceleration * t;
  }
  if (t < rampTime + cruiseTime) {
    return peakVelocity;
  }
  return acceleration * (Duration() - t);
}

}  // namespace tavsim
