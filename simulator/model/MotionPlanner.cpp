#include "model/MotionPlanner.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/StateCodes.h"
#include "model/TrapezoidProfile.h"

namespace tavsim {

namespace {

constexpr double kSampleStep = 0.004;
constexpr std::size_t kMaxSamplesPerRun = 25000;
// A larger change between two samples means the path runs through a singularity.
constexpr double kMaxJointStepDegrees = 20.0;

void AddDwell(std::vector<std::unique_ptr<Trajectory>>& parts, const JointVector& at,
              double dwell) {
  if (dwell > 0.0 && !parts.empty()) {
    parts.push_back(std::make_unique<Dwell>(at, dwell));
  }
}

std::unique_ptr<Trajectory> ChainOrNull(std::vector<std::unique_ptr<Trajectory>> parts) {
  if (parts.empty()) {
    return nullptr;
  }
  return std::make_unique<TrajectoryChain>(std::move(parts));
}

}  // namespace

// Speeds along a line within this share of the fastest one count as following it.
constexpr double kAlongLineTolerance = 1e-6;

MotionPlanner::MotionPlanner(const ArmKinematics& model, double jointLimitDegrees,
                             const ArmLimits& armLimits)
    : kinematics(model),
      jointLimit(jointLimitDegrees),
      limits(armLimits),
      posture(kinematics, limits) {}

bool MotionPlanner::Allows(const JointVector& armDegrees) const {
  return posture.Allows(JointsFromDegrees(armDegrees));
}

JointVector MotionPlanner::_takeOver(const JointState& start, const JointVector* target,
                                     std::vector<std::unique_ptr<Trajectory>>& parts,
                                     double& rate) const {
  rate = 0.0;
  if (!start.Moving()) {
    return start.position;
  }
  if (target != nullptr) {
    // The leading joint's speed along the line, and whether every joint already follows it.
    JointVector delta(start.position.size(), 0.0);
    double length = 0.0;
    double fastest = 0.0;
    double along = 0.0;
    double squared = 0.0;
    for (std::size_t i = 0; i < delta.size(); ++i) {
      delta[i] = (*target)[i] - start.position[i];
      length = std::max(length, std::abs(delta[i]));
      fastest = std::max(fastest, std::abs(start.velocity[i]));
      along += start.velocity[i] * delta[i];
      squared += delta[i] * delta[i];
    }
    bool follows = length > 0.0;
    for (std::size_t i = 0; follows && i < delta.size(); ++i) {
      follows =
          std::abs(start.velocity[i] - delta[i] * along / squared) <= kAlongLineTolerance * fastest;
    }
    if (follows) {
      rate = along / squared * length;
      return start.position;
    }
  }
  auto brake = std::make_unique<Brake>(start);
  JointVector rest = brake->PositionAt(brake->Duration());
  parts.push_back(std::move(brake));
  return rest;
}

bool MotionPlanner::WithinLimits(const JointVector& joints) const {
  return std::all_of(joints.begin(), joints.end(),
                     [this](double joint) { return std::abs(joint) <= jointLimit; });
}

std::unique_ptr<Trajectory> MotionPlanner::JointPath(const JointState& start,
                                                     const std::vector<JointVector>& targets,
                                                     double velocity, double acceleration,
                                                     double dwell) const {
  std::vector<std::unique_ptr<Trajectory>> parts;
  double rate = 0.0;
  JointVector from = _takeOver(start, targets.empty() ? nullptr : &targets.front(), parts, rate);
  for (const JointVector& target : targets) {
    AddDwell(parts, from, dwell);
    parts.push_back(std::make_unique<JointRamp>(from, target, velocity, acceleration, rate));
    rate = 0.0;
    from = target;
  }
  return ChainOrNull(std::move(parts));
}

int MotionPlanner::JointTargetsFor(const JointVector& start, const std::vector<Transform>& poses,
                                   std::vector<JointVector>& targets) const {
  ArmKinematics::Joints previous = JointsFromDegrees(start);
  double limit = DegToRad(jointLimit);
  for (const Transform& pose : poses) {
    auto solution = kinematics.NearestSolution(pose, previous, limit, &posture);
    if (!solution) {
      return StateCodes::kUnreachable;
    }
    previous = *solution;
    targets.push_back(JointsToDegrees(previous));
  }
  return StateCodes::kOk;
}

int MotionPlanner::ToolPath(const JointState& start, const std::vector<Waypoint>& waypoints,
                            double velocity, double acceleration, double dwell,
                            std::unique_ptr<Trajectory>& out) const {
  std::vector<std::unique_ptr<Trajectory>> parts;
  double rate = 0.0;
  ArmKinematics::Joints joints = JointsFromDegrees(_takeOver(start, nullptr, parts, rate));
  CartesianPath path(kinematics.Forward(joints), waypoints);
  for (std::size_t run = 0; run < path.RunCount(); ++run) {
    AddDwell(parts, JointsToDegrees(joints), dwell);
    std::unique_ptr<Trajectory> sampled;
    int state = _sampleRun(path, run, velocity, acceleration, joints, sampled);
    if (state != StateCodes::kOk) {
      return state;
    }
    parts.push_back(std::move(sampled));
  }
  out = ChainOrNull(std::move(parts));
  return StateCodes::kOk;
}

int MotionPlanner::_sampleRun(const CartesianPath& path, std::size_t run, double velocity,
                              double acceleration, ArmKinematics::Joints& joints,
                              std::unique_ptr<Trajectory>& out) const {
  TrapezoidProfile profile(path.RunLength(run), velocity, acceleration);
  double duration = profile.Duration();
  // Clamped while still a double: a crawling speed must not overflow the conversion.
  double wanted =
      std::clamp(std::ceil(duration / kSampleStep), 1.0, static_cast<double>(kMaxSamplesPerRun));
  auto steps = static_cast<std::size_t>(wanted);
  double step = duration / static_cast<double>(steps);
  double limit = DegToRad(jointLimit);
  double maxJump = DegToRad(kMaxJointStepDegrees);
  // Refused rather than slowed: the finite-difference speed of every joint between samples.
  double maxStep = DegToRad(limits.jointSpeed) * step * (1.0 + 1e-9);

  std::vector<JointVector> samples{JointsToDegrees(joints)};
  for (std::size_t i = 1; i <= steps; ++i) {
    Transform pose = path.PoseAt(run, profile.Position(step * static_cast<double>(i)));
    auto solution = kinematics.NearestSolution(pose, joints, limit, &posture);
    if (!solution) {
      return StateCodes::kUnreachable;
    }
    for (std::size_t j = 0; j < joints.size(); ++j) {
      double change = std::abs((*solution)[j] - joints[j]);
      if (change > maxJump || change > maxStep) {
        return StateCodes::kUnreachable;
      }
    }
    joints = *solution;
    samples.push_back(JointsToDegrees(joints));
  }
  out = std::make_unique<SampledTrajectory>(step, std::move(samples), profile);
  return StateCodes::kOk;
}

}  // namespace tavsim
