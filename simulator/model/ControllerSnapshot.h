#ifndef TAVSIM_MODEL_CONTROLLERSNAPSHOT_H
#define TAVSIM_MODEL_CONTROLLERSNAPSHOT_H

#include <optional>
#include <vector>

#include "model/ControllerState.h"
#include "model/Geometry.h"
#include "model/Pose.h"

namespace tavsim {

// What an onlooker sees of the simulated controller at one instant, copied out at once so
// that the values agree with each other.
struct ControllerSnapshot {
  double time = 0.0;  // seconds on the controller's clock
  ControllerMode mode = ControllerMode::Unconfigured;
  // One value per motor.
  std::vector<double> angles;      // degrees
  std::vector<double> velocities;  // deg/s
  std::vector<double> currents;    // amperes
  std::vector<bool> released;
  // The tool pose and the arm's frames (base, then the frame after each joint); nothing
  // with fewer than six motors.
  std::optional<Pose> pose;
  std::vector<Transform> frames;
  std::vector<int> outputs;  // channels 1..n
  std::vector<int> inputs;   // channels 1..m: the outputs wired back, then the tool sensors
  bool gripperClosed = false;
  bool vacuumHolding = false;
};

}  // namespace tavsim

#endif
