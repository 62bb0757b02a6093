#ifndef TAVSIM_MODEL_CONTROLLERSTATE_H
#define TAVSIM_MODEL_CONTROLLERSTATE_H

namespace tavsim {

// The controller's overall state.
//   Unconfigured: at power-up and after "finalize"; no robot is set up, motors are released.
//   Ready:        after "Robot" set-up; everything is allowed.
//   Stopped:      after "stop"; motion commands are refused until "recover", "reset" or
//                 "calibrate"; queries, hold/release, I/O and tools still work.
enum class ControllerMode { Unconfigured, Ready, Stopped };

// What a command needs from the controller's state.
enum class Access {
  Always,      // "Robot", "get_motor_ids", "finalize"
  Configured,  // Ready or Stopped: queries, kinematics, hold/release/wait, I/O, tools, and the
               // state commands "stop", "recover", "calibrate", "reset"
  Motion       // Ready only: "move_to_angles", "move_to_position", "moveJ", "moveL", "moveP"
};

class ControllerState {
public:
  ControllerMode Mode() const { return mode; }
  bool Allows(Access access) const;

  // "Robot": from Unconfigured to Ready; a repeated set-up keeps the current state.
  void Configure();
  void Stop() { mode = ControllerMode::Stopped; }
  // "recover", "reset", "calibrate".
  void MakeReady() { mode = ControllerMode::Ready; }
  void Finalize() { mode = ControllerMode::Unconfigured; }

private:
  ControllerMode mode = ControllerMode::Unconfigured;
};

}  // namespace tavsim

#endif
