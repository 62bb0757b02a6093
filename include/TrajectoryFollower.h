#ifndef TAVCLIENT_TRAJECTORYFOLLOWER_H
#define TAVCLIENT_TRAJECTORYFOLLOWER_H

#include <functional>
#include <memory>
#include <string>

#include "FollowResult.h"
#include "JointTrajectory.h"
#include "SharedRobot.h"
#include "StateMonitor.h"

namespace tavclient {

/// Makes the arm follow joint trajectories in time.
///
/// Follow() checks the trajectory, then streams set-points at a fixed rate as take-over
/// `move_to_angles` commands, interpolated so that the points' velocities are honoured, and
/// measures the tracking from the state monitor (which must read angles and velocities and be
/// running). One trajectory runs at a time: a Follow() from another thread replaces the
/// running one, taken over from the current motion without a stop.
class TrajectoryFollower {
public:
  using ProgressCallback = std::function<void(const FollowProgress&)>;

  TrajectoryFollower(std::shared_ptr<SharedRobot> robot, std::shared_ptr<StateMonitor> monitor,
                     FollowLimits limits = {});
  /// Cancels a running trajectory and waits for its Follow() to return.
  ~TrajectoryFollower();
  TrajectoryFollower(const TrajectoryFollower&) = delete;
  TrajectoryFollower& operator=(const TrajectoryFollower&) = delete;

  /// The check Follow() makes before anything moves: 0, or 1006011 with the reason in
  /// `reason`. Sends nothing.
  int Check(const JointTrajectory& trajectory, std::string& reason) const;

  /// Follows `trajectory` and returns how it ended. Blocks the caller; `progress` is called on
  /// the caller's thread once a cycle.
  FollowResult Follow(const JointTrajectory& trajectory, const FollowTolerances& tolerances = {},
                      const ProgressCallback& progress = {});

  /// Ends the running trajectory from any thread: returns at once, the arm brakes and Follow()
  /// returns Cancelled within 100 ms. Does nothing when none runs.
  void Cancel();
  bool Running() const;

  /// Set-points per second streamed while following.
  static constexpr double kRateHz = 125.0;

private:
  class Impl;
  std::unique_ptr<Impl> impl;
};

}  // namespace tavclient

#endif
