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

bool hasDuplicates(const std::vector<int>& ids) {
  return std::set<int>(ids.begin(), ids.end()).size() != ids.size();
}

// Shared parameters of moveJ, moveL and moveP.
struct PathRequest {
  std::vector<Pose> points;
  double velocity = 0.0;
  double acceleration = 0.0;
  double interval = 0.0;
  bool closed = false;

  bool read(const ParamReader& params) {
    return params.poses("points", points) && params.positive("velocity", velocity) &&
           params.positive("acceleration", acceleration) && params.real("interval", interval) &&
           interval >= 0.0 && params.flag("closed", closed);
  }

  // The points as waypoints, returning to the first one when closed.
  std::vector<Waypoint> waypoints(const std::vector<double>& radii) const {
    std::vector<Waypoint> result;
    for (std::size_t i = 0; i < points.size(); ++i) {
      result.push_back({poseToTransform(points[i]), i < radii.size() ? radii[i] : 0.0});
    }
    if (closed && !points.empty()) {
      result.push_back({poseToTransform(points.front()), 0.0});
    }
    return result;
  }
};

}  // namespace

int SimulatedController::armMotionCheck() const {
  if (!hasArm()) {
    return StateCodes::kUnknownMotor;
  }
  for (std::size_t motor : armMotors()) {
    if (arm_.released(motor)) {
      return StateCodes::kMotorReleased;
    }
  }
  return StateCodes::kOk;
}

Reply SimulatedController::launch(std::unique_ptr<Trajectory> trajectory,
                                  const std::vector<std::size_t>& motors, bool block, double now) {
  if (trajectory) {
    arm_.start(std::move(trajectory), motors, now);
  }
  return block ? awaitRest(motors, now) : done(StateCodes::kOk);
}

Reply SimulatedController::launchToolPath(const std::vector<Waypoint>& waypoints, double velocity,
                                          double acceleration, double dwell, bool block,
                                          double now) {
  JointVector start = armJoints(now);
  CartesianPath path(kinematics_.forward(jointsFromDegrees(start)), waypoints);
  std::unique_ptr<Trajectory> trajectory;
  int state = planner_.toolPath(start, path, velocity, acceleration, dwell, trajectory);
  if (state != StateCodes::kOk) {
    return done(state);
  }
  return launch(std::move(trajectory), armMotors(), block, now);
}

Reply SimulatedController::moveToAngles(const ParamReader& params, double now) {
  std::vector<int> ids;
  std::vector<double> positions;
  double velocity = 0.0;
  double acceleration = 0.0;
  bool relative = false;
  bool block = false;
  if (!params.ids("motor_ids", ids) || !params.reals("position", positions) ||
      !params.positive("velocity", velocity) || !params.positive("acceleration", acceleration) ||
      !params.flag("relative", relative) || !params.flag("block", block) ||
      ids.size() != positions.size() || hasDuplicates(ids)) {
    return done(StateCodes::kBadParameter);
  }
  std::vector<std::size_t> motors;
  if (int state = resolveMotors(ids, motors); state != StateCodes::kOk) {
    return done(state);
  }
  JointVector start = arm_.positions(motors, now);
  JointVector target = positions;
  for (std::size_t i = 0; i < motors.size(); ++i) {
    if (arm_.released(motors[i])) {
      return done(StateCodes::kMotorReleased);
    }
    if (relative) {
      target[i] += start[i];
    }
  }
  if (!planner_.withinLimits(target)) {
    return done(StateCodes::kUnreachable);
  }
  return launch(planner_.jointPath(start, {target}, velocity, acceleration, 0.0), motors, block,
                now);
}

Reply SimulatedController::moveToPosition(const ParamReader& params, double now) {
  Pose pose;
  double velocity = 0.0;
  double acceleration = 0.0;
  bool relative = false;
  bool block = false;
  if (!params.pose("position", pose) || !params.positive("velocity", velocity) ||
      !params.positive("acceleration", acceleration) || !params.flag("relative", relative) ||
      !params.flag("block", block)) {
    return done(StateCodes::kBadParameter);
  }
  if (int state = armMotionCheck(); state != StateCodes::kOk) {
    return done(state);
  }
  Transform target = poseToTransform(pose);
  if (relative) {
    // Offsets in the base frame: shift by the position, turn by the orientation.
    Transform current = kinematics_.forward(jointsFromDegrees(armJoints(now)));
    target = {target.rotation * current.rotation, current.translation + target.translation};
  }
  return launchToolPath({{target, 0.0}}, velocity, acceleration, 0.0, block, now);
}

Reply SimulatedController::moveJ(const ParamReader& params, double now) {
  PathRequest request;
  if (!request.read(params)) {
    return done(StateCodes::kBadParameter);
  }
  if (int state = armMotionCheck(); state != StateCodes::kOk) {
    return done(state);
  }
  std::vector<Transform> poses;
  for (const Waypoint& waypoint : request.waypoints({})) {
    poses.push_back(waypoint.pose);
  }
  JointVector start = armJoints(now);
  std::vector<JointVector> targets;
  if (int state = planner_.jointTargetsFor(start, poses, targets); state != StateCodes::kOk) {
    return done(state);
  }
  if (request.closed && !targets.empty()) {
    // Back to the very joints of the first point, not merely to its pose.
    targets.back() = targets.front();
  }
  auto trajectory =
      planner_.jointPath(start, targets, request.velocity, request.acceleration, request.interval);
  return launch(std::move(trajectory), armMotors(), false, now);
}

Reply SimulatedController::moveL(const ParamReader& params, double now) {
  PathRequest request;
  std::vector<double> radii;
  if (!request.read(params) || !params.reals("radius", radii) ||
      std::any_of(radii.begin(), radii.end(), [](double r) { return r < 0.0; })) {
    return done(StateCodes::kBadParameter);
  }
  if (int state = armMotionCheck(); state != StateCodes::kOk) {
    return done(state);
  }
  return launchToolPath(request.waypoints(radii), request.velocity, request.acceleration,
                        request.interval, false, now);
}

Reply SimulatedController::moveP(const ParamReader& params, double now) {
  PathRequest request;
  if (!request.read(params)) {
    return done(StateCodes::kBadParameter);
  }
  if (int state = armMotionCheck(); state != StateCodes::kOk) {
    return done(state);
  }
  std::vector<Waypoint> waypoints = request.waypoints({});
  Vec3 previous = kinematics_.forward(jointsFromDegrees(armJoints(now))).translation;
  for (std::size_t i = 0; i + 1 < waypoints.size(); ++i) {
    const Vec3& corner = waypoints[i].pose.translation;
    double shorterLeg = std::min(norm(corner - previous),
                                 norm(waypoints[i + 1].pose.translation - corner));
    waypoints[i].blendRadius = kProcessBlendShare * shorterLeg;
    previous = corner;
  }
  return launchToolPath(waypoints, request.velocity, request.acceleration, request.interval, false,
                        now);
}

Reply SimulatedController::hold(const ParamReader& params, double now) {
  return switchDrives(params, now, false);
}

Reply SimulatedController::release(const ParamReader& params, double now) {
  return switchDrives(params, now, true);
}

Reply SimulatedController::switchDrives(const ParamReader& params, double now, bool limp) {
  std::vector<std::size_t> motors;
  if (int state = readMotors(params, motors); state != StateCodes::kOk) {
    return done(state);
  }
  haltMotors(motors, now);
  setDrives(motors, limp);
  return done(StateCodes::kOk);
}

Reply SimulatedController::waitForMotors(const ParamReader& params, double now) {
  std::vector<std::size_t> motors;
  if (int state = readMotors(params, motors); state != StateCodes::kOk) {
    return done(state);
  }
  return awaitRest(std::move(motors), now);
}

}  // namespace tavsim
