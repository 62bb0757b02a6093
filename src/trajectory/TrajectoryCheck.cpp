#include "trajectory/TrajectoryCheck.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <set>
#include <sstream>
#include <utility>

#include "common/RobotEvent.h"

namespace tavclient {

namespace {

// The controller's joint range.
constexpr double kJointRange = 360.0;
// Rounding of a spline through points that exactly meet a limit.
constexpr double kLimitSlack = 1e-9;

std::string Beyond(int id, double value, double time, double limit, const char* unit) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(1) << "motor " << id << " needs " << value << ' ' << unit
       << " at " << std::setprecision(3) << time << " s, above its limit of "
       << std::setprecision(1) << limit << ' ' << unit;
  return text.str();
}

bool AllFinite(const std::vector<double>& values) {
  return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

int Refuse(std::string& reason, std::string why) {
  reason = std::move(why);
  return RobotEvents::kInvalidArgument;
}

std::string PointProblem(const TrajectoryPoint& point, std::size_t index, std::size_t joints,
                         double previousTime) {
  const std::string at = "point " + std::to_string(index) + ": ";
  if (!std::isfinite(point.timeFromStart) || point.timeFromStart < 0.0) {
    return at + "time from start must be finite and not negative";
  }
  if (index > 0 && !(point.timeFromStart > previousTime)) {
    return at + "times must be strictly increasing";
  }
  if (point.positions.size() != joints) {
    return at + std::to_string(point.positions.size()) + " positions for " +
           std::to_string(joints) + " motors";
  }
  if (!point.velocities.empty() && point.velocities.size() != joints) {
    return at + std::to_string(point.velocities.size()) + " velocities for " +
           std::to_string(joints) + " motors";
  }
  if (!AllFinite(point.positions) || !AllFinite(point.velocities)) {
    return at + "values must be finite";
  }
  for (double position : point.positions) {
    if (std::abs(position) > kJointRange) {
      return at + "a position beyond +-360 deg";
    }
  }
  return {};
}

std::string IdProblem(const std::vector<int>& ids, const std::vector<int>& knownIds) {
  if (ids.empty()) {
    return "no motor ids";
  }
  if (std::set<int>(ids.begin(), ids.end()).size() != ids.size()) {
    return "a motor id named twice";
  }
  for (int id : ids) {
    if (std::find(knownIds.begin(), knownIds.end(), id) == knownIds.end()) {
      return "motor " + std::to_string(id) + " is not one of the arm's motors" +
             (knownIds.empty() ? " (none known yet: connect and set up first)" : "");
    }
  }
  return {};
}

}  // namespace

bool PerJoint(const std::vector<double>& values, std::size_t joints, double fallback,
              const char* what, std::vector<double>& out, std::string& reason) {
  if (values.empty()) {
    out.assign(joints, fallback);
  } else if (values.size() == 1) {
    out.assign(joints, values.front());
  } else if (values.size() == joints) {
    out = values;
  } else {
    reason = std::string(what) + ": " + std::to_string(values.size()) + " values for " +
             std::to_string(joints) + " motors";
    return false;
  }
  return true;
}

int CheckTrajectory(const JointTrajectory& trajectory, const std::vector<int>& knownIds,
                    const FollowLimits& limits, const JointStart* start,
                    std::unique_ptr<JointSpline>& path, std::string& reason) {
  const std::size_t joints = trajectory.motorIds.size();
  if (std::string problem = IdProblem(trajectory.motorIds, knownIds); !problem.empty()) {
    return Refuse(reason, problem);
  }
  if (trajectory.points.empty()) {
    return Refuse(reason, "no points");
  }
  std::vector<double> maxVelocity;
  std::vector<double> maxAcceleration;
  if (!PerJoint(limits.maxVelocity, joints, kArmMaxVelocity, "velocity limits", maxVelocity,
                reason) ||
      !PerJoint(limits.maxAcceleration, joints, kArmMaxAcceleration, "acceleration limits",
                maxAcceleration, reason)) {
    return RobotEvents::kInvalidArgument;
  }
  std::vector<double> times;
  std::vector<std::vector<double>> positions;
  std::vector<std::vector<double>> velocities;
  const bool leadIn = start != nullptr && trajectory.points.front().timeFromStart > 0.0;
  if (leadIn) {
    times.push_back(0.0);
    positions.push_back(start->positions);
    velocities.push_back(start->velocities);
  }
  for (std::size_t i = 0; i < trajectory.points.size(); ++i) {
    const TrajectoryPoint& point = trajectory.points[i];
    const double previous = i > 0 ? trajectory.points[i - 1].timeFromStart : 0.0;
    if (std::string problem = PointProblem(point, i, joints, previous); !problem.empty()) {
      return Refuse(reason, problem);
    }
    times.push_back(point.timeFromStart);
    positions.push_back(point.positions);
    velocities.push_back(point.velocities);
  }
  auto spline = std::make_unique<JointSpline>(std::move(times), std::move(positions), velocities);
  for (std::size_t j = 0; j < joints; ++j) {
    const auto speed = spline->PeakVelocity(j);
    if (std::abs(speed.value) > maxVelocity[j] * (1.0 + kLimitSlack)) {
      return Refuse(reason, Beyond(trajectory.motorIds[j], std::abs(speed.value), speed.time,
                                   maxVelocity[j], "deg/s"));
    }
    const auto acceleration = spline->PeakAcceleration(j);
    if (std::abs(acceleration.value) > maxAcceleration[j] * (1.0 + kLimitSlack)) {
      return Refuse(reason, Beyond(trajectory.motorIds[j], std::abs(acceleration.value),
                                   acceleration.time, maxAcceleration[j], "deg/s^2"));
    }
  }
  path = std::move(spline);
  reason.clear();
  return 0;
}

}  // namespace tavclient
