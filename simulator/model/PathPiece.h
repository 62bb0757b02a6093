#ifndef TAVSIM_MODEL_PATHPIECE_H
#define TAVSIM_MODEL_PATHPIECE_H

#include <array>

#include "model/Geometry.h"

namespace tavsim {

// Rotation counts as the travel of a point this far from the tool centre, so that a pure
// change of orientation still has a length to time the motion by (metres per radian).
constexpr double kRotationLever = 0.1;

// One piece of a tool path: the position follows a quadratic Bezier curve (a straight line
// when the control point is the midpoint, a rounded corner otherwise) and the orientation
// turns uniformly from the first to the last orientation. Walked by arc length.
class PathPiece {
public:
  PathPiece(const Vec3& from, const Vec3& control, const Vec3& to, const Quaternion& startTurn,
            const Quaternion& endTurn);
  static PathPiece Line(const Vec3& from, const Vec3& to, const Quaternion& startTurn,
                        const Quaternion& endTurn);

  double Length() const { return length; }
  Transform PoseAt(double s) const;

private:
  static constexpr std::size_t kTableSteps = 32;

  Vec3 _curve(double u) const;
  // Curve parameter at which the path has covered s.
  double _parameterAt(double s) const;

  Vec3 from;
  Vec3 control;
  Vec3 to;
  Quaternion startTurn;
  Quaternion endTurn;
  // Position arc length covered at u = i / kTableSteps.
  std::array<double, kTableSteps + 1> covered{};
  double length = 0.0;
};

}  // namespace tavsim

#endif
