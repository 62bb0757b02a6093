#ifndef TAVSIM_MODEL_ARMLIMITS_H
#define TAVSIM_MODEL_ARMLIMITS_H

#include <optional>

namespace tavsim {

// What the simulated arm refuses to do, after the published figures of a UR5-class arm. A
// command asking for more speed or acceleration is refused; a motion that would take a joint
// faster, put the tool or a joint below the floor, or fold the elbow onto itself never starts.
struct ArmLimits {
  double jointSpeed = 180.0;           // deg/s
  double jointAcceleration = 2291.83;  // deg/s^2 (40 rad/s^2)
  double toolSpeed = 1.0;              // m/s
  double toolAcceleration = 150.0;     // m/s^2
  // Height of the floor in the base frame (metres); nothing: no floor.
  std::optional<double> floor = 0.0;
  // The elbow may not come within this many degrees of +-180 (0: no check).
  double foldLimit = 20.0;
};

}  // namespace tavsim

#endif
