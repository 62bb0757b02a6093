#include "model/PathPiece.h"

#include <algorithm>
#include <cmath>

namespace tavsim {

namespace {

double turnAngle(const Quaternion& a, const Quaternion& b) {
  double cosine = std::abs(a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z);
  return 2.0 * std::acos(std::min(1.0, cosine));
}

}  // namespace

PathPiece::PathPiece(const Vec3& from, const Vec3& control, const Vec3& to,
                     const Quaternion& startTurn, const Quaternion& endTurn)
    : from_(from), control_(control), to_(to), startTurn_(startTurn), endTurn_(endTurn) {
  for (std::size_t i = 1; i <= kTableSteps; ++i) {
    double u0 = static_cast<double>(i - 1) / kTableSteps;
    double u1 = static_cast<double>(i) / kTableSteps;
    covered_[i] = covered_[i - 1] + norm(curve(u1) - curve(u0));
  }
  length_ = std::max(covered_[kTableSteps], kRotationLever * turnAngle(startTurn, endTurn));
}

PathPiece PathPiece::line(const Vec3& from, const Vec3& to, const Quaternion& startTurn,
                          const Quaternion& endTurn) {
  return PathPiece(from, 0.5 * (from + to), to, startTurn, endTurn);
}

Vec3 PathPiece::curve(double u) const {
  double v = 1.0 - u;
  return (v * v) * from_ + (2.0 * u * v) * control_ + (u * u) * to_;
}

double PathPiece::parameterAt(double s) const {
  if (length_ <= 0.0) {
    return 0.0;
  }
  double travelled = std::clamp(s, 0.0, length_);
  double positionLength = covered_[kTableSteps];
  if (positionLength < length_) {
    // Turning dominates: the rotation, not the position, is walked uniformly.
    return travelled / length_;
  }
  auto upper = std::lower_bound(covered_.begin() + 1, covered_.end(), travelled);
  if (upper == covered_.end()) {
    return 1.0;
  }
  auto index = static_cast<std::size_t>(upper - covered_.begin());
  double span = covered_[index] - covered_[index - 1];
  double within = span > 0.0 ? (travelled - covered_[index - 1]) / span : 0.0;
  return (static_cast<double>(index - 1) + within) / kTableSteps;
}

Transform PathPiece::poseAt(double s) const {
  double u = parameterAt(s);
  return {slerp(startTurn_, endTurn_, u).toMatrix(), curve(u)};
}

}  // namespace tavsim
