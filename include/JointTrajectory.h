#ifndef TAVCLIENT_JOINTTRAJECTORY_H
#define TAVCLIENT_JOINTTRAJECTORY_H

#include <vector>

namespace tavclient {

/// One point of a joint trajectory.
struct TrajectoryPoint {
  double timeFromStart = 0.0;      ///< seconds after the trajectory's start
  std::vector<double> positions;   ///< degrees, one per motor id
  std::vector<double> velocities;  ///< degrees per second, one per motor id; empty: chosen
                                   ///< by the library (zero at the ends, smooth between)
};

/// A time-parameterised path of some of the arm's joints.
struct JointTrajectory {
  std::vector<int> motorIds;
  std::vector<TrajectoryPoint> points;  ///< times strictly increasing, the first >= 0
};

/// The ceilings a trajectory is checked against before anything moves. Empty: the arm's
/// documented ceilings for every joint (180 deg/s and 2291.83 deg/s^2); one value: that value
/// for every joint; otherwise one per motor id.
struct FollowLimits {
  std::vector<double> maxVelocity;      ///< degrees per second
  std::vector<double> maxAcceleration;  ///< degrees per second squared
};

/// When a following ends. Per-joint vectors hold one value per motor id or one for all.
struct FollowTolerances {
  std::vector<double> path;        ///< degrees from the desired position; empty: not checked
  std::vector<double> goal{0.05};  ///< degrees from the last point, to have arrived
  double goalVelocity = 0.5;       ///< degrees per second below which a joint is at rest
  double goalTime = 0.5;  ///< seconds after the last point's time to arrive, else it failed
};

}  // namespace tavclient

#endif
