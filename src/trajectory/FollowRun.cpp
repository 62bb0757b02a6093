#include "trajectory/FollowRun.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <utility>

#include "TrajectoryFollower.h"
#include "common/RobotEvent.h"
#include "stream/SamplingSchedule.h"
#include "trajectory/TrajectoryCheck.h"

namespace tavclient {

namespace {

constexpr int kRefusalFirst = 2001000;
constexpr int kRefusalLast = 2001999;

bool IsRefusal(int code) { return code >= kRefusalFirst && code <= kRefusalLast; }

std::string Strayed(int id, double error, double time, double tolerance) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(3) << "motor " << id << " was " << error
       << " deg from its path at " << time << " s (tolerance " << tolerance << " deg)";
  return text.str();
}

}  // namespace

bool FollowRun::ResolveTolerances(const FollowTolerances& given, std::size_t joints,
                                  Tolerances& out, std::string& reason) {
  if (!given.path.empty() &&
      !PerJoint(given.path, joints, 0.0, "path tolerances", out.path, reason)) {
    return false;
  }
  if (!PerJoint(given.goal, joints, 0.0, "goal tolerances", out.goal, reason)) {
    return false;
  }
  const auto negative = [](double v) { return !(v >= 0.0); };
  if (std::any_of(out.path.begin(), out.path.end(), negative) ||
      std::any_of(out.goal.begin(), out.goal.end(), negative) || negative(given.goalVelocity) ||
      negative(given.goalTime)) {
    reason = "tolerances must not be negative";
    return false;
  }
  out.goalVelocity = given.goalVelocity;
  out.goalTime = given.goalTime;
  return true;
}

bool FollowRun::ReadJoints(const StateSample& sample, const std::vector<int>& ids,
                           std::vector<double>& positions, std::vector<double>& velocities) {
  positions.clear();
  velocities.clear();
  for (int id : ids) {
    const auto found = std::find(sample.motorIds.begin(), sample.motorIds.end(), id);
    const auto index = static_cast<std::size_t>(found - sample.motorIds.begin());
    if (found == sample.motorIds.end() || index >= sample.angles.size() ||
        index >= sample.velocities.size()) {
      return false;
    }
    positions.push_back(sample.angles[index]);
    velocities.push_back(sample.velocities[index]);
  }
  return true;
}

FollowRun::FollowRun(SharedRobot& shared, const StateMonitor& stateMonitor,
                     std::vector<int> motorIds, const JointSpline& joints, Tolerances chosen,
                     SetpointChooser setpoints, Waiter wait, Progress callback)
    : robot(shared),
      monitor(stateMonitor),
      ids(std::move(motorIds)),
      path(joints),
      tolerances(std::move(chosen)),
      chooser(std::move(setpoints)),
      waiter(std::move(wait)),
      progress(std::move(callback)) {}

double FollowRun::_seconds(Clock::time_point time) const {
  return std::chrono::duration<double>(time - start).count();
}

FollowResult FollowRun::Execute() {
  const auto period = std::chrono::duration_cast<Clock::duration>(
      std::chrono::duration<double>(1.0 / TrajectoryFollower::kRateHz));
  start = Clock::now();
  SamplingSchedule schedule(start, period);
  for (;;) {
    FollowOutcome why = FollowOutcome::Invalid;
    if (waiter(schedule.Next(), why)) {
      // A replacement takes the motion over as it is; a cancel brakes.
      return _end(why, 0, why == FollowOutcome::Cancelled ? "cancelled" : "replaced",
                  why == FollowOutcome::Cancelled);
    }
    const double t = _seconds(Clock::now());
    auto sample = monitor.Latest();
    if (sample && sample->sequence != lastSequence) {
      lastSequence = sample->sequence;
      FollowResult ended;
      if (_observe(*sample, ended)) {
        return ended;
      }
    }
    if (t > path.EndTime() + tolerances.goalTime) {
      return _end(FollowOutcome::GoalToleranceExceeded, 0,
                  "not arrived within the goal time after the last point", true);
    }
    if (known && progress) {
      progress(report);
    }
    if (int code = _send(t); code != 0) {
      const bool refused = IsRefusal(code);
      return _end(refused ? FollowOutcome::CommandRefused : FollowOutcome::SessionFailed, code,
                  std::string("a set-point failed: ") + Robot::EventText(code), refused);
    }
    schedule.Advance(Clock::now());
  }
}

bool FollowRun::_observe(const StateSample& sample, FollowResult& ended) {
  std::vector<double> positions;
  std::vector<double> velocities;
  if (!Has(sample.fresh, StateField::Angles) || !Has(sample.fresh, StateField::Velocities) ||
      !ReadJoints(sample, ids, positions, velocities)) {
    if (sample.code != 0 && !IsRefusal(sample.code)) {
      ended =
          _end(FollowOutcome::SessionFailed, sample.code,
               std::string("the state could not be read: ") + Robot::EventText(sample.code), false);
      return true;
    }
    return false;
  }
  known = true;
  knownAt = _seconds(sample.time);
  actual = positions;
  speeds = velocities;
  std::vector<double> desiredSpeeds;
  path.Evaluate(knownAt, report.desired, desiredSpeeds);
  report.time = knownAt;
  report.actual = positions;
  report.error.resize(ids.size());
  for (std::size_t j = 0; j < ids.size(); ++j) {
    report.error[j] = positions[j] - report.desired[j];
    if (knownAt >= 0.0) {
      maxError = std::max(maxError, std::abs(report.error[j]));
    }
  }
  for (std::size_t j = 0; j < tolerances.path.size(); ++j) {
    if (knownAt >= 0.0 && std::abs(report.error[j]) > tolerances.path[j]) {
      ended = _end(FollowOutcome::PathToleranceExceeded, 0,
                   Strayed(ids[j], std::abs(report.error[j]), knownAt, tolerances.path[j]), true);
      return true;
    }
  }
  if (knownAt < path.EndTime()) {
    return false;
  }
  const std::vector<double>& last = path.EndPositions();
  for (std::size_t j = 0; j < ids.size(); ++j) {
    if (std::abs(positions[j] - last[j]) > tolerances.goal[j] ||
        std::abs(velocities[j]) > tolerances.goalVelocity) {
      return false;
    }
  }
  ended = _end(FollowOutcome::Succeeded, 0, "arrived", false);
  ended.duration = knownAt;
  return true;
}

int FollowRun::_send(double t) {
  std::vector<double> now;
  std::vector<double> next;
  std::vector<double> unused;
  const double cycle = 1.0 / TrajectoryFollower::kRateHz;
  path.Evaluate(t, now, unused);
  path.Evaluate(t + cycle, next, unused);
  const bool finishing = t + cycle >= path.EndTime();
  return robot.Use([&](Robot& arm) {
    for (std::size_t j = 0; j < ids.size(); ++j) {
      // Where the joint is now: the newest reading carried on at its speed.
      const double position = known ? actual[j] + speeds[j] * (t - knownAt) : now[j];
      const double speed = known ? speeds[j] : 0.0;
      const Setpoint setpoint =
          chooser.Choose(j, now[j], next[j], position, speed, finishing, path.EndPositions()[j]);
      // One joint per move: a move naming several joints would first brake any motion that
      // is not along its own straight line.
      int code = arm.move_to_angles(ids[j], setpoint.target, setpoint.velocity,
                                    setpoint.acceleration, Relative_Mode::Absolute);
      if (code != 0) {
        return code;
      }
    }
    return 0;
  });
}

FollowResult FollowRun::_end(FollowOutcome outcome, int code, std::string message, bool brake) {
  if (brake) {
    // Halts the joints at their deceleration without leaving the controller in a state that
    // refuses the next move.
    robot.Use([&](Robot& arm) { return arm.hold(ids.size(), ids.data()); });
  }
  FollowResult result;
  result.outcome = outcome;
  result.code = code;
  result.message = std::move(message);
  result.duration = _seconds(Clock::now());
  result.plannedDuration = path.EndTime();
  result.maxError = maxError;
  if (known) {
    for (std::size_t j = 0; j < ids.size(); ++j) {
      result.finalError.push_back(actual[j] - path.EndPositions()[j]);
    }
  }
  return result;
}

}  // namespace tavclient
