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

void addDwell(std::vector<std::unique_ptr<Trajectory>>& parts, const JointVector& at,
              double dwell) {
  if (dwell > 0.0 && !parts.empty()) {
    parts.push_back(std::make_unique<Dwell>(at, dwell));
  }
}

std::unique_ptr<Trajectory> chainOrNull(std::vector<std::unique_ptr<Trajectory>> parts) {
  if (parts.empty()) {
    return nullptr;
  }
  return std::make_unique<TrajectoryChain>(std::move(parts));
}

}  // namespace

MotionPlanner::MotionPlanner(const ArmKinematics& kinematics, double jointLimitDegrees)
    : kinematics_(kinematics), jointLimit_(jointLimitDegrees) {}

bool MotionPlanner::withinLimits(const JointVector& joints) const {
  return std::all_of(joints.begin(), joints.end(),
                     [this](double joint) { return std::abs(joint) <= jointLimit_; });
}

std::unique_ptr<Trajectory> MotionPlanner::jointPath(const JointVector& start,
                                                     const std::vector<JointVector>& targets,
                                                     double velocity, double acceleration,
                                                     double dwell) const {
  std::vector<std::unique_ptr<Trajectory>> parts;
  JointVector from = start;
  for (const JointVector& target : targets) {
    addDwell(parts, from, dwell);
    parts.push_back(std::make_unique<JointRamp>(from, target, velocity, acceleration));
    from = target;
  }
  return chainOrNull(std::move(parts));
}

int MotionPlanner::jointTargetsFor(const JointVector& start, const std::vector<Transform>& poses,
                                   std::vector<JointVector>& targets) const {
  ArmKinematics::Joints previous = jointsFromDegrees(start);
  double limit = degToRad(jointLimit_);
  for (const Transform& pose : poses) {
    auto solution = kinematics_.nearestSolution(pose, previous, limit);
    if (!solution) {
      return StateCodes::kUnreachable;
    }
    previous = *solution;
    targets.push_back(jointsToDegrees(previous));
  }
  return StateCodes::kOk;
}

int MotionPlanner::toolPath(const JointVector& start, const CartesianPath& path, double velocity,
                            double acceleration, double dwell,
                            std::unique_ptr<Trajectory>& out) const {
  std::vector<std::unique_ptr<Trajectory>> parts;
  ArmKinematics::Joints joints = jointsFromDegrees(start);
  for (std::size_t run = 0; run < path.runCount(); ++run) {
    addDwell(parts, jointsToDegrees(joints), dwell);
    std::unique_ptr<Trajectory> sampled;
    int state = sampleRun(path, run, velocity, acceleration, joints, sampled);
    if (state != StateCodes::kOk) {
      return state;
    }
    parts.push_back(std::move(sampled));
  }
  out = chainOrNull(std::move(parts));
  return StateCodes::kOk;
}

int MotionPlanner::sampleRun(const CartesianPath& path, std::size_t run, double velocity,
                             double acceleration, ArmKinematics::Joints& joints,
                             std::unique_ptr<Trajectory>& out) const {
  TrapezoidProfile profile(path.runLength(run), velocity, acceleration);
  double duration = profile.duration();
  // Clamped while still a double: a crawling speed must not overflow the conversion.
  double wanted = std::clamp(std::ceil(duration / kSampleStep), 1.0,
                             static_cast<double>(kMaxSamplesPerRun));
  auto steps = static_cast<std::size_t>(wanted);
  double step = duration / static_cast<double>(steps);
  double limit = degToRad(jointLimit_);
  double maxJump = degToRad(kMaxJointStepDegrees);

  std::vector<JointVector> samples{jointsToDegrees(joints)};
  for (std::size_t i = 1; i <= steps; ++i) {
    Transform pose = path.poseAt(run, profile.position(step * static_cast<double>(i)));
    auto solution = kinematics_.nearestSolution(pose, joints, limit);
    if (!solution) {
      return StateCodes::kUnreachable;
    }
    for (std::size_t j = 0; j < joints.size(); ++j) {
      if (std::abs((*solution)[j] - joints[j]) > maxJump) {
        return StateCodes::kUnreachable;
      }
    }
    joints = *solution;
    samples.push_back(jointsToDegrees(joints));
  }
  out = std::make_unique<SampledTrajectory>(step, std::move(samples));
  return StateCodes::kOk;
}

}  // namespace tavsim
