// The controller as an onlooker sees it.
#include "model/SimulatedController.h"

namespace tavsim {

ControllerSnapshot SimulatedController::Snapshot() const {
  std::lock_guard<std::mutex> lock(mutex);
  const double now = clock->Now();
  ControllerSnapshot snapshot;
  snapshot.time = now;
  snapshot.mode = controllerState.Mode();
  const auto gravity = _gravityTorques(now);
  for (std::size_t motor : _allMotors()) {
    snapshot.angles.push_back(arm.Position(motor, now));
    snapshot.velocities.push_back(arm.Velocity(motor, now));
    snapshot.currents.push_back(_motorCurrent(motor, gravity, now));
    snapshot.released.push_back(arm.Released(motor));
  }
  if (_hasArm()) {
    const auto frames = kinematics.Frames(JointsFromDegrees(_armJoints(now)));
    snapshot.frames.assign(frames.begin(), frames.end());
    snapshot.pose = TransformToPose(frames.back());
  }
  for (int channel = 1; io.HasOutput(channel); ++channel) {
    snapshot.outputs.push_back(io.Input(channel, now));
  }
  for (int channel = 1; io.HasInput(channel); ++channel) {
    snapshot.inputs.push_back(io.Input(channel, now));
  }
  // The tool sensors follow the outputs' loopback inputs: the gripper's, then the vacuum's.
  const std::size_t tools = snapshot.outputs.size();
  snapshot.gripperClosed = snapshot.inputs.size() > tools && snapshot.inputs[tools] != 0;
  snapshot.vacuumHolding = snapshot.inputs.size() > tools + 1 && snapshot.inputs[tools + 1] != 0;
  return snapshot;
}

}  // namespace tavsim
