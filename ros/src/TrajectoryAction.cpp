#include "TrajectoryAction.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "AngleUnits.h"

namespace tavdriver {

namespace {

using tavclient::FollowOutcome;
using Result = tavclient_ros::FollowJointTrajectoryResult;

// A tolerance of -1 lifts the check for its joint: wider than any arm reaches.
constexpr double kUnchecked = 1e9;

std::string _codeText(int code) { return std::to_string(code) + " " + Robot::EventText(code); }

// The per-joint values of `given` for `jointNames` in degrees (`field` of each entry), with
// `fallback` where an entry is absent or 0.
std::vector<double> _perJoint(const std::vector<tavclient_ros::JointTolerance>& given,
                              const std::vector<std::string>& jointNames, double fallback) {
  std::vector<double> values(jointNames.size(), fallback);
  for (const auto& tolerance : given) {
    const auto at = std::find(jointNames.begin(), jointNames.end(), tolerance.name);
    if (at == jointNames.end() || tolerance.position == 0.0) {
      continue;
    }
    values[static_cast<std::size_t>(at - jointNames.begin())] =
        tolerance.position < 0 ? kUnchecked : Degrees(tolerance.position);
  }
  return values;
}

trajectory_msgs::JointTrajectoryPoint _point(const std::vector<double>& degrees, double time) {
  trajectory_msgs::JointTrajectoryPoint point;
  point.positions = Radians(degrees);
  point.time_from_start = ros::Duration(time);
  return point;
}

}  // namespace

TrajectoryAction::TrajectoryAction(ros::NodeHandle node,
                                   std::shared_ptr<tavclient::SharedRobot> sharedRobot,
                                   std::shared_ptr<tavclient::StateMonitor> monitor,
                                   const SessionKeeper& sessionKeeper, const JointNames& jointNames,
                                   const DriverOptions& driverOptions)
    : robot(sharedRobot),
      keeper(sessionKeeper),
      names(jointNames),
      options(driverOptions),
      follower(sharedRobot, std::move(monitor)),
      server(
          node, "follow_joint_trajectory", [this](GoalHandle goal) { _onGoal(goal); },
          [this](GoalHandle goal) { _onCancel(goal); }, false) {
  server.start();
}

TrajectoryAction::~TrajectoryAction() { Shutdown(); }

void TrajectoryAction::Shutdown() {
  Brake();
  std::vector<Runner> ending;
  {
    std::lock_guard<std::mutex> lock(mutex);
    ending.swap(runners);
  }
  for (Runner& runner : ending) {
    runner.thread.join();
  }
}

void TrajectoryAction::Brake() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    cancelCurrent = true;
  }
  follower.Cancel();
}

std::string TrajectoryAction::State() const {
  std::lock_guard<std::mutex> lock(mutex);
  return follower.Running() ? "following goal " + current : "idle";
}

void TrajectoryAction::_onGoal(GoalHandle goal) {
  Result result;
  if (!keeper.Connected()) {
    result.error_code = Result::INVALID_GOAL;
    result.error_string = "not connected to the controller at " + keeper.Settings().Address();
    if (keeper.LastCode() != 0) {
      result.error_string += " (last: " + _codeText(keeper.LastCode()) + ")";
    }
    goal.setRejected(result, result.error_string);
    return;
  }
  tavclient::JointTrajectory trajectory;
  tavclient::FollowTolerances tolerances;
  if (!_translate(*goal.getGoal(), trajectory, tolerances, result)) {
    goal.setRejected(result, result.error_string);
    return;
  }
  goal.setAccepted();
  std::lock_guard<std::mutex> lock(mutex);
  // Threads of goals that have ended are joined here, so at most the few overlapping at a
  // hand-over stay.
  for (auto it = runners.begin(); it != runners.end();) {
    if (it->done->load()) {
      it->thread.join();
      it = runners.erase(it);
    } else {
      ++it;
    }
  }
  current = goal.getGoalID().id;
  cancelCurrent = false;
  auto done = std::make_shared<std::atomic<bool>>(false);
  runners.push_back({std::thread([this, goal, trajectory, tolerances, done]() mutable {
                       _follow(goal, std::move(trajectory), std::move(tolerances));
                       done->store(true);
                     }),
                     done});
}

void TrajectoryAction::_onCancel(GoalHandle goal) {
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (goal.getGoalID().id != current) {
      return;  // replaced already, its thread ends it
    }
    cancelCurrent = true;
  }
  follower.Cancel();
}

bool TrajectoryAction::_translate(const tavclient_ros::FollowJointTrajectoryGoal& goal,
                                  tavclient::JointTrajectory& trajectory,
                                  tavclient::FollowTolerances& tolerances, Result& result) const {
  const auto& jointNames = goal.trajectory.joint_names;
  const std::vector<int> known = robot->Use([](Robot& arm) {
    std::vector<int> ids;
    arm.get_motor_ids(ids);
    return ids;
  });
  std::string reason;
  if (!names.MotorIds(jointNames, known, trajectory.motorIds, reason)) {
    result.error_code = Result::INVALID_JOINTS;
    result.error_string = reason;
    return false;
  }
  result.error_code = Result::INVALID_GOAL;
  if (goal.trajectory.points.empty()) {
    result.error_string = "the trajectory has no points";
    return false;
  }
  for (std::size_t i = 0; i < goal.trajectory.points.size(); ++i) {
    const auto& point = goal.trajectory.points[i];
    if (point.positions.size() != jointNames.size() ||
        (!point.velocities.empty() && point.velocities.size() != jointNames.size())) {
      result.error_string = "point " + std::to_string(i) +
                            " does not have one position (and "
                            "velocity, if any) per joint name";
      return false;
    }
    trajectory.points.push_back(
        {point.time_from_start.toSec(), Degrees(point.positions), Degrees(point.velocities)});
  }

  tolerances.goal = _perJoint(goal.goal_tolerance, jointNames, options.goalTolerance);
  const double pathDefault = options.pathTolerance > 0 ? options.pathTolerance : kUnchecked;
  tolerances.path = _perJoint(goal.path_tolerance, jointNames, pathDefault);
  if (std::all_of(tolerances.path.begin(), tolerances.path.end(),
                  [](double value) { return value >= kUnchecked; })) {
    tolerances.path.clear();
  }
  for (const auto& tolerance : goal.goal_tolerance) {
    if (tolerance.velocity > 0) {
      tolerances.goalVelocity = std::min(tolerances.goalVelocity, Degrees(tolerance.velocity));
    }
  }
  tolerances.goalTime = goal.goal_time_tolerance.toSec() > 0 ? goal.goal_time_tolerance.toSec()
                                                             : options.goalTimeTolerance;

  if (follower.Check(trajectory, reason) != 0) {
    result.error_string = reason;
    return false;
  }
  return true;
}

void TrajectoryAction::_follow(GoalHandle goal, tavclient::JointTrajectory trajectory,
                               tavclient::FollowTolerances tolerances) {
  tavclient_ros::FollowJointTrajectoryFeedback feedback;
  feedback.joint_names = goal.getGoal()->trajectory.joint_names;
  const auto progress = [&](const tavclient::FollowProgress& cycle) {
    {
      // A cancel that came before the following began is carried out at its first cycle.
      std::lock_guard<std::mutex> lock(mutex);
      if (cancelCurrent && goal.getGoalID().id == current) {
        follower.Cancel();
      }
    }
    feedback.header.stamp = ros::Time::now();
    feedback.desired = _point(cycle.desired, cycle.time);
    feedback.actual = _point(cycle.actual, cycle.time);
    feedback.error = _point(cycle.error, cycle.time);
    goal.publishFeedback(feedback);
  };
  tavclient::FollowResult outcome;
  {
    std::unique_lock<std::mutex> lock(mutex);
    const bool replaced = goal.getGoalID().id != current;
    const bool cancelled = cancelCurrent && !replaced;
    lock.unlock();
    if (replaced || cancelled) {
      outcome.outcome = replaced ? FollowOutcome::Replaced : FollowOutcome::Cancelled;
      outcome.message = replaced ? "replaced by a newer goal" : "cancelled";
      _finish(goal, outcome);
      return;
    }
  }
  outcome = follower.Follow(trajectory, tolerances, progress);
  _finish(goal, outcome);
  ++finished;
}

void TrajectoryAction::_finish(GoalHandle& goal, const tavclient::FollowResult& outcome) {
  Result result;
  result.error_code = Result::SUCCESSFUL;
  result.error_string = outcome.message;
  switch (outcome.outcome) {
    case FollowOutcome::Succeeded:
      goal.setSucceeded(result, outcome.message);
      return;
    case FollowOutcome::Cancelled:
    case FollowOutcome::Replaced:
      goal.setCanceled(result, outcome.message);
      return;
    case FollowOutcome::PathToleranceExceeded:
      result.error_code = Result::PATH_TOLERANCE_VIOLATED;
      break;
    case FollowOutcome::GoalToleranceExceeded:
      result.error_code = Result::GOAL_TOLERANCE_VIOLATED;
      break;
    case FollowOutcome::Invalid:
    case FollowOutcome::CommandRefused:
    case FollowOutcome::SessionFailed:
      result.error_code = Result::INVALID_GOAL;
      break;
  }
  if (outcome.code != 0) {
    result.error_string = _codeText(outcome.code) + ": " + outcome.message;
  }
  goal.setAborted(result, result.error_string);
}

}  // namespace tavdriver
