#include "TrajectoryFollower.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "common/RobotEvent.h"
#include "trajectory/FollowRun.h"
#include "trajectory/SetpointChooser.h"
#include "trajectory/TrajectoryCheck.h"

namespace tavclient {

class TrajectoryFollower::Impl {
public:
  Impl(std::shared_ptr<SharedRobot> shared, std::shared_ptr<StateMonitor> stateMonitor,
       FollowLimits followLimits)
      : robot(std::move(shared)),
        monitor(std::move(stateMonitor)),
        limits(std::move(followLimits)) {}

  // The check against the joints' state now, when the monitor has it.
  int Check(const JointTrajectory& trajectory, std::unique_ptr<JointSpline>& path,
            std::string& reason) const;
  FollowResult Follow(const JointTrajectory& trajectory, const FollowTolerances& tolerances,
                      const ProgressCallback& progress);
  void Cancel();
  // Cancels every call and waits for them to return.
  void Close();

  std::atomic<bool> running{false};

private:
  FollowResult _follow(const JointTrajectory& trajectory, const FollowTolerances& tolerances,
                       const ProgressCallback& progress);
  bool _startState(const std::vector<int>& ids, JointStart& start, std::string& reason) const;
  // Waits until no earlier run streams any more; false (with the outcome) when this run was
  // cancelled or replaced meanwhile.
  bool _claim(std::uint64_t ticket, FollowOutcome& why);
  void _release();
  // Whether the run of `ticket` must end, and how; under the mutex.
  bool _interrupted(std::uint64_t ticket, FollowOutcome& why) const;
  bool _waitSlot(std::uint64_t ticket, FollowRun::Clock::time_point until, FollowOutcome& why);

  std::shared_ptr<SharedRobot> robot;
  std::shared_ptr<StateMonitor> monitor;
  FollowLimits limits;

  std::mutex mutex;
  std::condition_variable changed;
  std::uint64_t lastTicket = 0;     // the newest run's
  std::uint64_t cancelledUpTo = 0;  // runs up to this ticket are cancelled
  bool active = false;              // a run streams set-points
  int callers = 0;                  // Follow calls not yet returned
  bool closing = false;
};

int TrajectoryFollower::Impl::Check(const JointTrajectory& trajectory,
                                    std::unique_ptr<JointSpline>& path, std::string& reason) const {
  std::vector<int> knownIds;
  robot->Use([&](Robot& arm) { return arm.get_motor_ids(knownIds); });
  JointStart start;
  std::string unknown;
  const bool started = _startState(trajectory.motorIds, start, unknown);
  return CheckTrajectory(trajectory, knownIds, limits, started ? &start : nullptr, path, reason);
}

bool TrajectoryFollower::Impl::_startState(const std::vector<int>& ids, JointStart& start,
                                           std::string& reason) const {
  const MonitorOptions& options = monitor->Options();
  if (!Has(options.fields, StateField::Angles) || !Has(options.fields, StateField::Velocities)) {
    reason = "the state monitor must read angles and velocities";
    return false;
  }
  auto sample = monitor->Latest();
  if (!monitor->Running()) {
    reason = "the state monitor is not running";
    return false;
  }
  if (!sample) {
    reason = "the state monitor has no sample yet";
    return false;
  }
  if (!Has(sample->fresh, StateField::Angles) || !Has(sample->fresh, StateField::Velocities)) {
    reason = std::string("no fresh state: ") + Robot::EventText(sample->code);
    return false;
  }
  if (!FollowRun::ReadJoints(*sample, ids, start.positions, start.velocities)) {
    reason = "the state monitor does not read every motor of the trajectory";
    return false;
  }
  return true;
}

bool TrajectoryFollower::Impl::_interrupted(std::uint64_t ticket, FollowOutcome& why) const {
  if (closing || cancelledUpTo >= ticket) {
    why = FollowOutcome::Cancelled;
    return true;
  }
  if (lastTicket != ticket) {
    why = FollowOutcome::Replaced;
    return true;
  }
  return false;
}

bool TrajectoryFollower::Impl::_claim(std::uint64_t ticket, FollowOutcome& why) {
  std::unique_lock<std::mutex> lock(mutex);
  changed.wait(lock, [&] { return !active || _interrupted(ticket, why); });
  if (_interrupted(ticket, why)) {
    return false;
  }
  active = true;
  running = true;
  return true;
}

void TrajectoryFollower::Impl::_release() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    active = false;
    running = false;
  }
  changed.notify_all();
}

bool TrajectoryFollower::Impl::_waitSlot(std::uint64_t ticket, FollowRun::Clock::time_point until,
                                         FollowOutcome& why) {
  std::unique_lock<std::mutex> lock(mutex);
  return changed.wait_until(lock, until, [&] { return _interrupted(ticket, why); });
}

FollowResult TrajectoryFollower::Impl::Follow(const JointTrajectory& trajectory,
                                              const FollowTolerances& tolerances,
                                              const ProgressCallback& progress) {
  {
    std::lock_guard<std::mutex> lock(mutex);
    ++callers;
  }
  FollowResult result = _follow(trajectory, tolerances, progress);
  {
    std::lock_guard<std::mutex> lock(mutex);
    --callers;
  }
  changed.notify_all();
  return result;
}

FollowResult TrajectoryFollower::Impl::_follow(const JointTrajectory& trajectory,
                                               const FollowTolerances& tolerances,
                                               const ProgressCallback& progress) {
  FollowResult refused;
  refused.outcome = FollowOutcome::Invalid;
  refused.code = RobotEvents::kInvalidArgument;
  if (!trajectory.points.empty()) {
    refused.plannedDuration = trajectory.points.back().timeFromStart;
  }
  const std::size_t joints = trajectory.motorIds.size();
  std::unique_ptr<JointSpline> path;
  JointStart start;
  FollowRun::Tolerances perJoint;
  std::vector<double> maxVelocity;
  std::vector<double> maxAcceleration;
  if (Check(trajectory, path, refused.message) != 0 ||
      !FollowRun::ResolveTolerances(tolerances, joints, perJoint, refused.message) ||
      !_startState(trajectory.motorIds, start, refused.message)) {
    return refused;
  }
  std::uint64_t ticket = 0;
  {
    // The newest call takes over: a running one sees the new ticket and yields.
    std::lock_guard<std::mutex> lock(mutex);
    ticket = ++lastTicket;
  }
  changed.notify_all();
  FollowOutcome why = FollowOutcome::Invalid;
  if (!_claim(ticket, why)) {
    FollowResult ended;
    ended.outcome = why;
    ended.message = why == FollowOutcome::Cancelled ? "cancelled before it started"
                                                    : "replaced before it started";
    ended.plannedDuration = refused.plannedDuration;
    return ended;
  }
  // Checked again from the state now that an earlier run has yielded: the path starts from
  // the motion it takes over.
  if (Check(trajectory, path, refused.message) != 0) {
    robot->Use([&](Robot& arm) {
      return arm.hold(trajectory.motorIds.size(), trajectory.motorIds.data());
    });
    _release();
    return refused;
  }
  PerJoint(limits.maxVelocity, joints, kArmMaxVelocity, "", maxVelocity, refused.message);
  PerJoint(limits.maxAcceleration, joints, kArmMaxAcceleration, "", maxAcceleration,
           refused.message);
  FollowRun run(
      *robot, *monitor, trajectory.motorIds, *path, perJoint,
      SetpointChooser(1.0 / kRateHz, maxVelocity, maxAcceleration),
      [this, ticket](FollowRun::Clock::time_point until, FollowOutcome& reason) {
        return _waitSlot(ticket, until, reason);
      },
      progress);
  FollowResult result = run.Execute();
  _release();
  return result;
}

void TrajectoryFollower::Impl::Cancel() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (callers == 0) {
      return;
    }
    cancelledUpTo = lastTicket;
  }
  changed.notify_all();
}

void TrajectoryFollower::Impl::Close() {
  std::unique_lock<std::mutex> lock(mutex);
  closing = true;
  changed.notify_all();
  changed.wait(lock, [this] { return callers == 0; });
}

TrajectoryFollower::TrajectoryFollower(std::shared_ptr<SharedRobot> robot,
                                       std::shared_ptr<StateMonitor> monitor, FollowLimits limits)
    : impl(std::make_unique<Impl>(std::move(robot), std::move(monitor), std::move(limits))) {}

TrajectoryFollower::~TrajectoryFollower() { impl->Close(); }

int TrajectoryFollower::Check(const JointTrajectory& trajectory, std::string& reason) const {
  std::unique_ptr<JointSpline> path;
  return impl->Check(trajectory, path, reason);
}

FollowResult TrajectoryFollower::Follow(const JointTrajectory& trajectory,
                                        const FollowTolerances& tolerances,
                                        const ProgressCallback& progress) {
  return impl->Follow(trajectory, tolerances, progress);
}

void TrajectoryFollower::Cancel() { impl->Cancel(); }
bool TrajectoryFollower::Running() const { return impl->running; }

}  // namespace tavclient
