#ifndef TAVCLIENT_TRAJECTORY_TRAJECTORYCHECK_H
#define TAVCLIENT_TRAJECTORY_TRAJECTORYCHECK_H

#include <memory>
#include <string>
#include <vector>

#include "JointTrajectory.h"
#include "trajectory/JointSpline.h"

namespace tavclient {

// The arm's documented ceilings, the limits when the application sets none.
constexpr double kArmMaxVelocity = 180.0;        // deg/s
constexpr double kArmMaxAcceleration = 2291.83;  // deg/s^2

// Where the joints are when a trajectory starts, in the trajectory's motor order.
struct JointStart {
  std::vector<double> positions;   // degrees
  std::vector<double> velocities;  // degrees per second
};

// Checks a trajectory before anything moves and builds the path the joints will take: from
// `start` (when given and the first point lies after time 0) through every point. Returns 0,
// or 1006011 with the reason in `reason`.
int CheckTrajectory(const JointTrajectory& trajectory, const std::vector<int>& knownIds,
                    const FollowLimits& limits, const JointStart* start,
                    std::unique_ptr<JointSpline>& path, std::string& reason);

// One value per joint from a per-joint setting: one value for all, or one each. False (with
// the reason) for any other count.
bool PerJoint(const std::vector<double>& values, std::size_t joints, double fallback,
              const char* what, std::vector<double>& out, std::string& reason);

}  // namespace tavclient

#endif
