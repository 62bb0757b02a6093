// Motion commands and the motor commands hold, release and wait_for_motors.
#include <algorithm>
#include <set>
#include <utility>

#include "model/SimulatedController.h"
#include "model/StateCodes.h"

namespace tavsim {

namespace {

// A process move (moveP) rounds every corner by this share of its shorter leg.
constexpr double kProcessBlendShare = 0.2;

bool HasDuplicates(const std::vector<int>& ids) {
  return std::set<int>(ids.begin(), ids.end()).size() != ids.size();
}

// Shared parameters of moveJ, moveL and moveP.
struct PathRequest {
  std::vector<Pose> points;
  double velocity = 0.0;
  double acceleration = 0.0;
  double interval = 0.0;
  bool closed = false;

  bool Read(const ParamReader& params) {
    return params.Poses("points", points) && params.Positive("velocity", velocity) &&
           params.Positive("acceleration", acceleration) && params.Real("interval", interval) &&
           interval >= 0.0 && params.Flag("closed", closed);
  }

  bool Within(double maxVelocity, double maxAcceleration) const {
    return velocity <= maxVelocity && acceleration <= maxAcceleration;
  }

  // The points as waypoints, returning to the first one when closed.
  std::vector<Waypoint> Waypoints(const std::vector<double>& radii) const {
    std::vector<Waypoint> result;
    for (std::size_t i = 0; i < points.size(); ++i) {
      result.push_back({PoseToTransform(points[i]), i < radii.size() ? radii[i] : 0.0});
    }
    if (closed && !points.empty()) {
      result.push_back({PoseToTransform(points.front()), 0.0});
    }
    return result;
  }
};

}  // namespace

int SimulatedController::_armMotionCheck() const {
  if (!_hasArm()) {
    return StateCodes::kUnknownMotor;
  }
  for (std::size_t motor : _armMotors()) {
    if (arm.Released(motor)) {
      return StateCodes::kMotorReleased;
    }
  }
  return StateCodes::kOk;
}

Reply SimulatedController::_launch(std::unique_ptr<Trajectory> trajectory,
                                   const std::vector<std::size_t>& motors, bool block, double now) {
  if (trajectory) {
    arm.Start(std::move(trajectory), motors, now);
  }
  return block ? _awaitRest(motors, now) : _done(StateCodes::kOk);
}

Reply SimulatedController::_launchToolPath(const std::vector<Waypoint>& waypoints, double velocity,
                                           double acceleration, double dwell, bool block,
                                           double now) {
  const ArmLimits& limits = planner.Limits();
  if (velocity > limits.toolSpeed || acceleration > limits.toolAcceleration) {
    return _done(StateCodes::kBadParameter);
  }
  std::unique_ptr<Trajectory> trajectory;
  int state = planner.ToolPath(arm.State(_armMotors(), now), waypoints, velocity, acceleration,
                               dwell, trajectory);
  if (state != StateCodes::kOk) {
    return _done(state);
  }
  return _launch(std::move(trajectory), _armMotors(), block, now);
}

Reply SimulatedController::_moveToAngles(const ParamReader& params, double now) {
  std::vector<int> ids;
  std::vector<double> positions;
  double velocity = 0.0;
  double acceleration = 0.0;
  bool relative = false;
  bool block = false;
  if (!params.Ids("motor_ids", ids) || !params.Reals("position", positions) ||
      !params.Positive("velocity", velocity) || !params.Positive("acceleration", acceleration) ||
      !params.Flag("relative", relative) || !params.Flag("block", block) ||
      ids.size() != positions.size() || HasDuplicates(ids) ||
      velocity > planner.Limits().jointSpeed || acceleration > planner.Limits().jointAcceleration) {
    return _done(StateCodes::kBadParameter);
  }
  std::vector<std::size_t> motors;
  if (int state = _resolveMotors(ids, motors); state != StateCodes::kOk) {
    return _done(state);
  }
  JointState start = arm.State(motors, now);
  JointVector target = positions;
  JointVector arm6 = _hasArm() ? _armJoints(now) : JointVector{};
  for (std::size_t i = 0; i < motors.size(); ++i) {
    if (arm.Released(motors[i])) {
      return _done(StateCodes::kMotorReleased);
    }
    if (relative) {
      target[i] += start.position[i];
    }
    if (motors[i] < arm6.size()) {
      arm6[motors[i]] = target[i];
    }
  }
  if (!planner.WithinLimits(target) || (!arm6.empty() && !planner.Allows(arm6))) {
    return _done(StateCodes::kUnreachable);
  }
  return _launch(planner.JointPath(start, {target}, velocity, acceleration, 0.0), motors, block,
                 now);
}

Reply SimulatedController::_moveToPosition(const ParamReader& params, double now) {
  Pose pose;
  double velocity = 0.0;
  double acceleration = 0.0;
  bool relative = false;
  bool block = false;
  if (!params.SinglePose("position", pose) || !params.Positive("velocity", velocity) ||
      !params.Positive("acceleration", acceleration) || !params.Flag("relative", relative) ||
      !params.Flag("block", block)) {
    return _done(StateCodes::kBadParameter);
  }
  if (int state = _armMotionCheck(); state != StateCodes::kOk) {
    return _done(state);
  }
  Transform target = PoseToTransform(pose);
  if (relative) {
    // Offsets in the base frame: shift by the position, turn by the orientation.
    Transform current = kinematics.Forward(JointsFromDegrees(_armJoints(now)));
    target = {target.rotation * current.rotation, current.translation + target.translation};
  }
  return _launchToolPath({{target, 0.0}}, velocity, acceleration, 0.0, block, now);
}

Reply SimulatedController::_moveJ(const ParamReader& params, double now) {
  PathRequest request;
  if (!request.Read(params) ||
      !request.Within(planner.Limits().jointSpeed, planner.Limits().jointAcceleration)) {
    return _done(StateCodes::kBadParameter);
  }
  if (int state = _armMotionCheck(); state != StateCodes::kOk) {
    return _done(state);
  }
  std::vector<Transform> poses;
  for (const Waypoint& waypoint : request.Waypoints({})) {
    poses.push_back(waypoint.pose);
  }
  JointVector start = _armJoints(now);
  std::vector<JointVector> targets;
  if (int state = planner.JointTargetsFor(start, poses, targets); state != StateCodes::kOk) {
    return _done(state);
  }
  if (request.closed && !targets.empty()) {
    // Back to the very joints of the first point, not merely to its pose.
    targets.back() = targets.front();
  }
  auto trajectory = planner.JointPath(arm.State(_armMotors(), now), targets, request.velocity,
                                      request.acceleration, request.interval);
  return _launch(std::move(trajectory), _armMotors(), false, now);
}

Reply SimulatedController::_moveL(const ParamReader& params, double now) {
  PathRequest request;
  std::vector<double> radii;
  if (!request.Read(params) || !params.Reals("radius", radii) ||
      std::any_of(radii.begin(), radii.end(), [](double r) { return r < 0.0; })) {
    return _done(StateCodes::kBadParameter);
  }
  if (int state = _armMotionCheck(); state != StateCodes::kOk) {
    return _done(state);
  }
  return _launchToolPath(request.Waypoints(radii), request.velocity, request.acceleration,
                         request.interval, false, now);
}

Reply SimulatedController::_moveP(const ParamReader& params, double now) {
  PathRequest request;
  if (!request.Read(params)) {
    return _done(StateCodes::kBadParameter);
  }
  if (int state = _armMotionCheck(); state != StateCodes::kOk) {
    return _done(state);
  }
  std::vector<Waypoint> waypoints = request.Waypoints({});
  Vec3 previous = kinematics.Forward(JointsFromDegrees(_armJoints(now))).translation;
  for (std::size_t i = 0; i + 1 < waypoints.size(); ++i) {
    const Vec3& corner = waypoints[i].pose.translation;
    double shorterLeg =
        std::min(Norm(corner - previous), Norm(waypoints[i + 1].pose.translation - corner));
    waypoints[i].blendRadius = kProcessBlendShare * shorterLeg;
    previous = corner;
  }
  return _launchToolPath(waypoints, request.velocity, request.acceleration, request.interval, false,
                         now);
}

Reply SimulatedController::_hold(const ParamReader& params, double now) {
  return _switchDrives(params, now, false);
}

Reply SimulatedController::_release(const ParamReader& params, double now) {
  return _switchDrives(params, now, true);
}

Reply SimulatedController::_switchDrives(const ParamReader& params, double now, bool limp) {
  std::vector<std::size_t> motors;
  if (int state = _readMotors(params, motors); state != StateCodes::kOk) {
    return _done(state);
  }
  _haltMotors(motors, now);
  _setDrives(motors, limp);
  return _done(StateCodes::kOk);
}

Reply SimulatedController::_waitForMotors(const ParamReader& params, double now) {
  std::vector<std::size_t> motors;
  if (int state = _readMotors(params, motors); state != StateCodes::kOk) {
    return _done(state);
  }
  return _awaitRest(std::move(motors), now);
}

}  // namespace tavsim
