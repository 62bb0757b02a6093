#include "model/PathPiece.h"

#include <algorithm>
#include <cmath>

namespace tavsim {

namespace {

double TurnAngle(const Quaternion& a, const Quaternion& b) {
  double cosine = std::abs(a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z);
  return 2.0 * std::acos(std::min(1.0, cosine));
}

}  // namespace

PathPiece::PathPiece(const Vec3& start, const Vec3& bend, const Vec3& end,
                     const Quaternion& firstTurn, const Quaternion& lastTurn)
    : from(start), control(bend), to(end), startTurn(firstTurn), endTurn(lastTurn) {
  for (std::size_t i = 1; i <= kTableSteps; ++i) {
    double u0 = static_cast<double>(i - 1) / kTableSteps;
    double u1 = static_cast<double>(i) / kTableSteps;
    covered[i] = covered[i - 1] + Norm(_curve(u1) - _curve(u0));
  }
  length = std::max(covered[kTableSteps], kRotationLever * TurnAngle(startTurn, endTurn));
}

PathPiece PathPiece::Line(const Vec3& from, const Vec3& to, const Quaternion& startTurn,
                          const Quaternion& endTurn) {
  return PathPiece(from, 0.5 * (from + to), to, startTurn, endTurn);
}

Vec3 PathPiece::_curve(double u) const {
  double v = 1.0 - u;
  return (v * v) * from + (2.0 * u * v) * control + (u * u) * to;
}

double PathPiece::_parameterAt(double s) const {
  if (length <= 0.0) {
    return 0.0;
  }
  double travelled = std::clamp(s, 0.0, length);
  double positionLength = covered[kTableSteps];
  if (positionLength < length) {
    // Turning dominates: the rotation, not the position, is walked uniformly.
    return travelled / length;
  }
  auto upper = std::lower_bound(covered.begin() + 1, covered.end(), travelled);
  if (upper == covered.end()) {
    return 1.0;
  }
  auto index = static_cast<std::size_t>(upper - covered.begin());
  double span = covered[index] - covered[index - 1];
  double within = span > 0.0 ? (travelled - covered[index - 1]) / span : 0.0;
  return (static_cast<double>(index - 1) + within) / kTableSteps;
}

Transform PathPiece::PoseAt(double s) const {
  double u = _parameterAt(s);
  return {Slerp(startTurn, endTurn, u).ToMatrix(), _curve(u)};
}

}  // namespace tavsim
