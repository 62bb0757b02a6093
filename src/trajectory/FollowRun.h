#ifndef TAVCLIENT_TRAJECTORY_FOLLOWRUN_H
#define TAVCLIENT_TRAJECTORY_FOLLOWRUN_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "FollowResult.h"
#include "JointTrajectory.h"
#include "SharedRobot.h"
#include "StateMonitor.h"
#include "trajectory/JointSpline.h"
#include "trajectory/SetpointChooser.h"

namespace tavclient {

// One following of one path, on the caller's thread: each cycle it compares the newest state
// sample with the path, calls the progress callback, decides whether the run has ended, and
// otherwise sends every joint its take-over move.
class FollowRun {
public:
  using Clock = std::chrono::steady_clock;
  // Sleeps until `until`; true (with the outcome) when the run was cancelled or replaced.
  using Waiter = std::function<bool(Clock::time_point until, FollowOutcome& why)>;
  using Progress = std::function<void(const FollowProgress&)>;

  // The tolerances with one value per joint.
  struct Tolerances {
    std::vector<double> path;  // empty: not checked
    std::vector<double> goal;
    double goalVelocity = 0.0;
    double goalTime = 0.0;
  };
  static bool ResolveTolerances(const FollowTolerances& given, std::size_t joints, Tolerances& out,
                                std::string& reason);
  // The angles and speeds of `ids` in a sample; false when the sample lacks one of them.
  static bool ReadJoints(const StateSample& sample, const std::vector<int>& ids,
                         std::vector<double>& positions, std::vector<double>& velocities);

  FollowRun(SharedRobot& robot, const StateMonitor& monitor, std::vector<int> ids,
            const JointSpline& path, Tolerances tolerances, SetpointChooser chooser, Waiter waiter,
            Progress progress);

  FollowResult Execute();

private:
  // Ends the run with `outcome`; brakes the joints first when asked.
  FollowResult _end(FollowOutcome outcome, int code, std::string message, bool brake);
  // Reads a sample not seen before; an outcome when it ends the run.
  bool _observe(const StateSample& sample, FollowResult& ended);
  int _send(double t);
  double _seconds(Clock::time_point time) const;

  SharedRobot& robot;
  const StateMonitor& monitor;
  std::vector<int> ids;
  const JointSpline& path;
  Tolerances tolerances;
  SetpointChooser chooser;
  Waiter waiter;
  Progress progress;

  Clock::time_point start;
  std::uint64_t lastSequence = 0;
  double maxError = 0.0;
  // The newest state read, when it was read (s from the start), and the error then.
  bool known = false;
  double knownAt = 0.0;
  std::vector<double> actual;
  std::vector<double> speeds;
  FollowProgress report;
};

}  // namespace tavclient

#endif
