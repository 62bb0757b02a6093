#ifndef TAVSIM_MODEL_ARMKINEMATICS_H
#define TAVSIM_MODEL_ARMKINEMATICS_H

#include <array>
#include <optional>
#include <vector>

#include "model/Geometry.h"

namespace tavsim {

class PostureCheck;

// One link in standard Denavit-Hartenberg form: T = Rz(theta) Tz(d) Tx(a) Rx(alpha).
struct DhLink {
  double a;      // metres
  double alpha;  // radians
  double d;      // metres
};

// Kinematics of a six-axis arm with the UR geometry: joints 2, 3 and 4 parallel, a1 = a4 =
// a5 = a6 = 0 and d2 = d3 = 0. Joint values here are radians; the controller speaks degrees.
class ArmKinematics {
public:
  static constexpr std::size_t kJoints = 6;
  using Joints = std::array<double, kJoints>;
  using Links = std::array<DhLink, kJoints>;

  explicit ArmKinematics(const Links& links);
  // The UR5's published standard DH parameters.
  static ArmKinematics Ur5();

  const Links& LinkTable() const { return links; }
  Transform Forward(const Joints& joints) const;
  // Base frame, then the frame after each joint: frames[i] = T01 * ... * T(i-1)i.
  std::array<Transform, kJoints + 1> Frames(const Joints& joints) const;

  // Every closed-form branch (up to eight: shoulder, wrist and elbow each two ways) that
  // reproduces the target, each joint wrapped into (-pi, pi]. When the wrist is singular
  // (joint 5 at 0 or pi) joint 6 takes `wristHint`, or the reachable angle nearest to it.
  std::vector<Joints> Solutions(const Transform& target, double wristHint = 0.0) const;

  // The branch closest to `current` (Euclidean in joint space), each joint shifted by whole
  // turns to the copy nearest to `current` within +-jointLimit; empty when unreachable.
  // With `posture`, only branches it allows count.
  std::optional<Joints> NearestSolution(const Transform& target, const Joints& current,
                                        double jointLimit,
                                        const PostureCheck* posture = nullptr) const;

private:
  // Joints 2 to 4 for the given joints 1, 5 and 6; adds the branches that reach the target.
  bool _solveArm(const Transform& target, double theta1, double theta5, double theta6,
                 std::vector<Joints>& found) const;
  Transform _linkTransform(std::size_t index, double theta) const;

  Links links;
};

// Joint vectors as the controller keeps them (degrees, at least six values) and back.
ArmKinematics::Joints JointsFromDegrees(const std::vector<double>& degrees);
std::vector<double> JointsToDegrees(const ArmKinematics::Joints& radians);

}  // namespace tavsim

#endif
