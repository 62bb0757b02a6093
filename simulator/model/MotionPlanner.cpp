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

MotionPlanner::MotionPlanner(const ArmKinematics& model, double jointLimitDegrees)
    : kinematics(model), jointLimit(jointLimitDegrees) {}

bool MotionPlanner::WithinLimits(const JointVector& joints) const {
  return std::all_of(joints.begin(), joints.end(),
                     [this](double joint) { return std::abs(joint) <= jointLimit; });
}

std::unique_ptr<Trajectory> MotionPlanner::JointPath(const JointVector& start,
                                                     const std::vector<JointVector>& targets,
                                                     double velocity, double acceleration,
                                                     double dwell) const {
  std::vector<std::unique_ptr<Trajectory>> parts;
  JointVector from = start;
  for (const JointVector& target : targets) {
    AddDwell(parts, from, dwell);
    parts.push_back(std::make_unique<JointRamp>(from, target, velocity, acceleration));
    from = target;
  }
  return ChainOrNull(std::move(parts));
}

int MotionPlanner::JointTargetsFor(const JointVector& start, const std::vector<Transform>& poses,
                                   std::vector<JointVector>& targets) const {
  ArmKinematics::Joints previous = JointsFromDegrees(start);
  double limit = DegToRad(jointLimit);
  for (const Transform& pose : poses) {
    auto solution = kinematics.NearestSolution(pose, previous, limit);
    if (!solution) {
      return StateCodes::kUnreachable;
    }
    previous = *solution;
    targets.push_back(JointsToDegrees(previous));
  }
  return StateCodes::kOk;
}

int MotionPlanner::ToolPath(const JointVector& start, const CartesianPath& path, double velocity,
                            double acceleration, double dwell,
                            std::unique_ptr<Trajectory>& out) const {
  std::vector<std::unique_ptr<Trajectory>> parts;
  ArmKinematics::Joints joints = JointsFromDegrees(start);
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

  std::vector<JointVector> samples{JointsToDegrees(joints)};
  for (std::size_t i = 1; i <= steps; ++i) {
    Transform pose = path.PoseAt(run, profile.Position(step * static_cast<double>(i)));
    auto solution = kinematics.NearestSolution(pose, joints, limit);
    if (!solution) {
      return StateCodes::kUnreachable;
    }
    for (std::size_t j = 0; j < joints.size(); ++j) {
      if (std::abs((*solution)[j] - joints[j]) > maxJump) {
        return StateCodes::kUnreachable;
      }
    }
    joints = *solution;
    samples.push_back(JointsToDegrees(joints));
  }
  out = std::make_unique<SampledTrajectory>(step, std::move(samples));
  return StateCodes::kOk;
}

}  // namespace tavsim
