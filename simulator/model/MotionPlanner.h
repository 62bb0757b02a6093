#ifndef TAVSIM_MODEL_MOTIONPLANNER_H
#define TAVSIM_MODEL_MOTIONPLANNER_H

#include <memory>
#include <vector>

#include "model/ArmKinematics.h"
#include "model/ArmLimits.h"
#include "model/CartesianPath.h"
#include "model/PostureCheck.h"
#include "model/Trajectory.h"

namespace tavsim {

// Turns motion requests into joint trajectories (degrees) for the six arm joints or any
// group of motors. Joint-space speeds are deg/s and deg/s^2, tool speeds m/s and m/s^2.
// `dwell` is the pause in seconds at every point where the motion comes to rest on the way.
// A motion that takes over moving joints starts from their speed: along its own line when they
// already move that way, otherwise after braking them to rest.
class MotionPlanner {
public:
  MotionPlanner(const ArmKinematics& kinematics, double jointLimitDegrees,
                const ArmLimits& armLimits);

  double JointLimit() const { return jointLimit; }
  const ArmLimits& Limits() const { return limits; }
  bool WithinLimits(const JointVector& joints) const;
  // Whether the six arm joints (degrees) may stand there: above the floor, elbow not folded.
  bool Allows(const JointVector& armDegrees) const;

  // Synchronised joint moves through each target in turn, stopping at each; null when
  // there are no targets.
  std::unique_ptr<Trajectory> JointPath(const JointState& start,
                                        const std::vector<JointVector>& targets, double velocity,
                                        double acceleration, double dwell) const;

  // Joint targets for tool poses, each the allowed inverse solution nearest to the one
  // before. Returns a state code: kOk or kUnreachable.
  int JointTargetsFor(const JointVector& start, const std::vector<Transform>& poses,
                      std::vector<JointVector>& targets) const;

  // Follows a tool path from where the arm comes to rest, sampling the inverse kinematics
  // along it. Returns kOk (with a null trajectory for an empty path) or kUnreachable when a
  // sample has no solution, leaves the allowed postures, or needs a joint faster than its
  // ceiling, or the joints would jump (the path crosses a singularity).
  int ToolPath(const JointState& start, const std::vector<Waypoint>& waypoints, double velocity,
               double acceleration, double dwell, std::unique_ptr<Trajectory>& out) const;

private:
  int _sampleRun(const CartesianPath& path, std::size_t run, double velocity, double acceleration,
                 ArmKinematics::Joints& joints, std::unique_ptr<Trajectory>& out) const;
  // Brakes moving joints to rest unless they already move along the way to `target`; gives
  // where the next leg starts and the leading joint's speed along it.
  JointVector _takeOver(const JointState& start, const JointVector* target,
                        std::vector<std::unique_ptr<Trajectory>>& parts, double& rate) const;

  const ArmKinematics& kinematics;
  double jointLimit;
  ArmLimits limits;
  PostureCheck posture;
};

}  // namespace tavsim

#endif
