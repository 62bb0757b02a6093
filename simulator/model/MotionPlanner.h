#ifndef TAVSIM_MODEL_MOTIONPLANNER_H
#define TAVSIM_MODEL_MOTIONPLANNER_H

#include <memory>
#include <vector>

#include "model/ArmKinematics.h"
#include "model/CartesianPath.h"
#include "model/Trajectory.h"

namespace tavsim {

// Turns motion requests into joint trajectories (degrees) for the six arm joints or any
// group of motors. Joint-space speeds are deg/s and deg/s^2, tool speeds m/s and m/s^2.
// `dwell` is the pause in seconds at every point where the motion comes to rest on the way.
class MotionPlanner {
public:
  MotionPlanner(const ArmKinematics& kinematics, double jointLimitDegrees);

  double JointLimit() const { return jointLimit; }
  bool WithinLimits(const JointVector& joints) const;

  // Synchronised joint moves through each target in turn, stopping at each; null when
  // there are no targets.
  std::unique_ptr<Trajectory> JointPath(const JointVector& start,
                                        const std::vector<JointVector>& targets, double velocity,
                                        double acceleration, double dwell) const;

  // Joint targets for tool poses, each the inverse solution nearest to the one before.
  // Returns a state code: kOk or kUnreachable.
  int JointTargetsFor(const JointVector& start, const std::vector<Transform>& poses,
                      std::vector<JointVector>& targets) const;

  // Follows a tool path, sampling the inverse kinematics along it. Returns kOk (with a null
  // trajectory for an empty path) or kUnreachable when a sample has no solution or the
  // joints would jump (the path crosses a singularity).
  int ToolPath(const JointVector& start, const CartesianPath& path, double velocity,
               double acceleration, double dwell, std::unique_ptr<Trajectory>& out) const;

private:
  int _sampleRun(const CartesianPath& path, std::size_t run, double velocity, double acceleration,
                 ArmKinematics::Joints& joints, std::unique_ptr<Trajectory>& out) const;

  const ArmKinematics& kinematics;
  double jointLimit;
};

}  // namespace tavsim

#endif
