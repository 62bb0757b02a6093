#include "trajectory/JointSpline.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavclient {

JointSpline::JointSpline(std::vector<double> knotTimes, std::vector<std::vector<double>> knots,
                         const std::vector<std::vector<double>>& knotVelocities)
    : times(std::move(knotTimes)), positions(std::move(knots)) {
  const std::size_t joints = positions.front().size();
  std::vector<bool> given(times.size());
  velocities.resize(times.size());
  for (std::size_t k = 0; k < times.size(); ++k) {
    given[k] = !knotVelocities[k].empty();
    velocities[k] = given[k] ? knotVelocities[k] : std::vector<double>(joints, 0.0);
  }
  for (std::size_t j = 0; j < joints; ++j) {
    _chooseVelocities(j, given);
  }
}

// Continuous acceleration at an inner knot k with unknown velocity:
//   v[k-1]/h0 + 2 v[k] (1/h0 + 1/h1) + v[k+1]/h1 = 3 ((q[k]-q[k-1])/h0^2 + (q[k+1]-q[k])/h1^2)
// Known velocities (given, or zero at the ends) are rows of their own; the system is
// tridiagonal and diagonally dominant, solved by elimination in one sweep each way.
void JointSpline::_chooseVelocities(std::size_t joint, const std::vector<bool>& given) {
  const std::size_t n = times.size();
  std::vector<double> lower(n, 0.0);
  std::vector<double> diagonal(n, 1.0);
  std::vector<double> upper(n, 0.0);
  std::vector<double> right(n, 0.0);
  for (std::size_t k = 0; k < n; ++k) {
    const bool inner = k > 0 && k + 1 < n;
    if (given[k] || !inner) {
      right[k] = velocities[k][joint];
      continue;
    }
    const double h0 = times[k] - times[k - 1];
    const double h1 = times[k + 1] - times[k];
    lower[k] = 1.0 / h0;
    diagonal[k] = 2.0 * (1.0 / h0 + 1.0 / h1);
    upper[k] = 1.0 / h1;
    right[k] = 3.0 * ((positions[k][joint] - positions[k - 1][joint]) / (h0 * h0) +
                      (positions[k + 1][joint] - positions[k][joint]) / (h1 * h1));
  }
  for (std::size_t k = 1; k < n; ++k) {
    const double factor = lower[k] / diagonal[k - 1];
    diagonal[k] -= factor * upper[k - 1];
    right[k] -= factor * right[k - 1];
  }
  for (std::size_t k = n; k-- > 0;) {
    const double next = k + 1 < n ? velocities[k + 1][joint] : 0.0;
    velocities[k][joint] = (right[k] - upper[k] * next) / diagonal[k];
  }
}

JointSpline::Cubic JointSpline::_piece(std::size_t interval, std::size_t joint) const {
  const double h = times[interval + 1] - times[interval];
  const double q0 = positions[interval][joint];
  const double q1 = positions[interval + 1][joint];
  const double v0 = velocities[interval][joint];
  const double v1 = velocities[interval + 1][joint];
  return {q0, v0, (3.0 * (q1 - q0) / h - 2.0 * v0 - v1) / h,
          (2.0 * (q0 - q1) / h + v0 + v1) / (h * h)};
}

void JointSpline::Evaluate(double t, std::vector<double>& position,
                           std::vector<double>& velocity) const {
  const std::size_t joints = Joints();
  if (t <= times.front() || t >= times.back()) {
    position = t <= times.front() ? positions.front() : positions.back();
    velocity.assign(joints, 0.0);
    return;
  }
  const auto after = std::upper_bound(times.begin(), times.end(), t);
  const auto interval = static_cast<std::size_t>(after - times.begin()) - 1;
  const double tau = t - times[interval];
  position.resize(joints);
  velocity.resize(joints);
  for (std::size_t j = 0; j < joints; ++j) {
    const Cubic p = _piece(interval, j);
    position[j] = p.a + tau * (p.b + tau * (p.c + tau * p.d));
    velocity[j] = p.b + tau * (2.0 * p.c + 3.0 * tau * p.d);
  }
}

JointSpline::Peak JointSpline::PeakVelocity(std::size_t joint) const {
  Peak peak;
  const auto consider = [&peak](double value, double time) {
    if (std::abs(value) > std::abs(peak.value)) {
      peak = {value, time};
    }
  };
  for (std::size_t i = 0; i + 1 < times.size(); ++i) {
    const Cubic p = _piece(i, joint);
    const double h = times[i + 1] - times[i];
    consider(p.b, times[i]);
    consider(p.b + h * (2.0 * p.c + 3.0 * h * p.d), times[i + 1]);
    // The speed of a cubic peaks inside where its acceleration crosses zero.
    if (p.d != 0.0) {
      const double tau = -p.c / (3.0 * p.d);
      if (tau > 0.0 && tau < h) {
        consider(p.b + tau * (2.0 * p.c + 3.0 * tau * p.d), times[i] + tau);
      }
    }
  }
  return peak;
}

JointSpline::Peak JointSpline::PeakAcceleration(std::size_t joint) const {
  Peak peak;
  for (std::size_t i = 0; i + 1 < times.size(); ++i) {
    const Cubic p = _piece(i, joint);
    const double h = times[i + 1] - times[i];
    // Linear over the interval: largest at one of its ends.
    for (const auto& [value, time] :
         {std::pair{2.0 * p.c, times[i]}, std::pair{2.0 * p.c + 6.0 * p.d * h, times[i + 1]}}) {
      if (std::abs(value) > std::abs(peak.value)) {
        peak = {value, time};
      }
    }
  }
  return peak;
}

}  // namespace tavclient
