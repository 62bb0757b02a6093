#ifndef TAVCLIENT_PYTHON_TRAJECTORYBINDING_H
#define TAVCLIENT_PYTHON_TRAJECTORYBINDING_H

#include <pybind11/pybind11.h>

namespace tavpy {

// tavclient.TrajectoryPoint, JointTrajectory, FollowTolerances, FollowOutcome, FollowResult,
// FollowProgress and TrajectoryFollower.
void BindTrajectories(pybind11::module_& module);

}  // namespace tavpy

#endif
