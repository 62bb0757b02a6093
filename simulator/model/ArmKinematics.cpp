#include "model/ArmKinematics.h"

#include <cmath>
#include <limits>

#include "model/PostureCheck.h"

namespace tavsim {

namespace {

constexpr double kHalfPi = kPi / 2.0;
// A branch is kept only if forward kinematics reproduces the target this closely. Near the
// wrist singularity acos turns rounding of 1e-16 into joint 5 errors of some 1e-7 rad, so
// the tolerance sits well above that and a nearly singular wrist is solved as singular.
constexpr double kPositionTolerance = 1e-6;
constexpr double kRotationTolerance = 2e-6;
constexpr double kSingularSine = 1e-6;
// At the wrist singularity joint 6 is tried at the hint, then ever further either side of it.
constexpr int kSingularSteps = 720;

bool Reproduces(const Transform& reached, const Transform& target) {
  return Norm(reached.translation - target.translation) < kPositionTolerance &&
         RotationAngle(reached.rotation, target.rotation) < kRotationTolerance;
}

// The copy of `angle` (shifted by whole turns) nearest to `reference` within +-limit.
double NearestTurn(double angle, double reference, double limit) {
  double best = angle;
  double bestDistance = std::numeric_limits<double>::infinity();
  for (int turns = -2; turns <= 2; ++turns) {
    double candidate = angle + 2.0 * kPi * turns;
    double distance = std::abs(candidate - reference);
    if (std::abs(candidate) <= limit + 1e-12 && distance < bestDistance) {
      best = candidate;
      bestDistance = distance;
    }
  }
  return best;
}

}  // namespace

ArmKinematics::ArmKinematics(const Links& table) : links(table) {}

ArmKinematics ArmKinematics::Ur5() {
  return ArmKinematics(Links{{{0.0, kHalfPi, 0.089159},
                              {-0.425, 0.0, 0.0},
                              {-0.39225, 0.0, 0.0},
                              {0.0, kHalfPi, 0.10915},
                              {0.0, -kHalfPi, 0.09465},
                              {0.0, 0.0, 0.0823}}});
}

Transform ArmKinematics::_linkTransform(std::size_t index, double theta) const {
  const DhLink& link = links[index];
  Mat3 rz = Mat3::RotZ(theta);
  return {rz * Mat3::RotX(link.alpha),
          {link.a * std::cos(theta), link.a * std::sin(theta), link.d}};
}

std::array<Transform, ArmKinematics::kJoints + 1> ArmKinematics::Frames(
    const Joints& joints) const {
  std::array<Transform, kJoints + 1> result;
  for (std::size_t i = 0; i < kJoints; ++i) {
    result[i + 1] = result[i] * _linkTransform(i, joints[i]);
  }
  return result;
}

Transform ArmKinematics::Forward(const Joints& joints) const { return Frames(joints)[kJoints]; }

std::vector<ArmKinematics::Joints> ArmKinematics::Solutions(const Transform& target,
                                                            double wristHint) const {
  const double d4 = links[3].d;
  const double d6 = links[5].d;
  const Vec3 x6 = target.rotation.Column(0);
  const Vec3 y6 = target.rotation.Column(1);
  const Vec3 z6 = target.rotation.Column(2);
  const Vec3& p = target.translation;

  std::vector<Joints> found;
  // Shoulder: the wrist centre (frame 5 origin) sits d4 off the arm's plane.
  Vec3 wrist = p - d6 * z6;
  double radial = std::hypot(wrist.x, wrist.y);
  if (radial < std::abs(d4) || radial < 1e-12) {
    return found;
  }
  double heading = std::atan2(wrist.y, wrist.x);
  double offset = std::asin(d4 / radial);
  for (double theta1 : {heading + offset, heading + kPi - offset}) {
    double s1 = std::sin(theta1);
    double c1 = std::cos(theta1);
    // Wrist: the tool axis' component along the shoulder axis fixes joint 5.
    double c5 = (p.x * s1 - p.y * c1 - d4) / d6;
    if (std::abs(c5) > 1.0 + 1e-9) {
      continue;
    }
    double base5 = std::acos(std::fmax(-1.0, std::fmin(1.0, c5)));
    for (double theta5 : {base5, -base5}) {
      double s5 = std::sin(theta5);
      if (std::abs(s5) > kSingularSine) {
        double theta6 = std::atan2(-(y6.x * s1 - y6.y * c1) / s5, (x6.x * s1 - x6.y * c1) / s5);
        _solveArm(target, theta1, theta5, theta6, found);
        continue;
      }
      // Joints 4 and 6 turn about one axis, and how they share the turn moves the wrist: joint 6
      // keeps the hint if the arm can reach that, else takes the reachable angle nearest to it.
      theta5 = c5 > 0.0 ? 0.0 : kPi;
      for (int step = 0; step <= kSingularSteps; ++step) {
        double shift = kPi * ((step + 1) / 2) / (kSingularSteps / 2) * (step % 2 == 0 ? 1.0 : -1.0);
        if (_solveArm(target, theta1, theta5, wristHint + shift, found)) {
          break;
        }
      }
    }
  }
  return found;
}

bool ArmKinematics::_solveArm(const Transform& target, double theta1, double theta5, double theta6,
                              std::vector<Joints>& found) const {
  const double a2 = links[1].a;
  const double a3 = links[2].a;
  // Planar 2R problem of joints 2 and 3 in frame 1, joint 4 takes the remaining angle.
  Transform t14 = _linkTransform(0, theta1).Inverse() * target *
                  _linkTransform(5, theta6).Inverse() * _linkTransform(4, theta5).Inverse();
  double px = t14.translation.x;
  double py = t14.translation.y;
  double c3 = (px * px + py * py - a2 * a2 - a3 * a3) / (2.0 * a2 * a3);
  if (std::abs(c3) > 1.0 + 1e-9) {
    return false;
  }
  bool reached = false;
  double base3 = std::acos(std::fmax(-1.0, std::fmin(1.0, c3)));
  for (double theta3 : {base3, -base3}) {
    double theta2 =
        std::atan2(py, px) - std::atan2(a3 * std::sin(theta3), a2 + a3 * std::cos(theta3));
    double sum234 = std::atan2(t14.rotation(1, 0), t14.rotation(0, 0));
    Joints joints{theta1, theta2, theta3, sum234 - theta2 - theta3, theta5, theta6};
    for (double& joint : joints) {
      joint = WrapAngle(joint);
    }
    if (Reproduces(Forward(joints), target)) {
      found.push_back(joints);
      reached = true;
    }
  }
  return reached;
}

std::optional<ArmKinematics::Joints> ArmKinematics::NearestSolution(
    const Transform& target, const Joints& current, double jointLimit,
    const PostureCheck* posture) const {
  std::optional<Joints> best;
  double bestDistance = std::numeric_limits<double>::infinity();
  for (Joints candidate : Solutions(target, current[5])) {
    if (posture != nullptr && !posture->Allows(candidate)) {
      continue;
    }
    double distance = 0.0;
    for (std::size_t i = 0; i < kJoints; ++i) {
      candidate[i] = NearestTurn(candidate[i], current[i], jointLimit);
      double delta = candidate[i] - current[i];
      distance += delta * delta;
    }
    if (distance < bestDistance) {
      best = candidate;
      bestDistance = distance;
    }
  }
  return best;
}

ArmKinematics::Joints JointsFromDegrees(const std::vector<double>& degrees) {
  ArmKinematics::Joints radians{};
  for (std::size_t i = 0; i < radians.size(); ++i) {
    radians[i] = DegToRad(degrees[i]);
  }
  return radians;
}

std::vector<double> JointsToDegrees(const ArmKinematics::Joints& radians) {
  std::vector<double> degrees(radians.size(), 0.0);
  for (std::size_t i = 0; i < radians.size(); ++i) {
    degrees[i] = RadToDeg(radians[i]);
  }
  return degrees;
}

}  // namespace tavsim
