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
  ControllerMode mode() const { return mode_; }
  bool allows(Access access) const;

  // "Robot": from Unconfigured to Ready; a repeated set-up keeps the current state.
  void configure();
  void stop() { mode_ = ControllerMode::Stopped; }
  // "recover", "reset", "calibrate".
  void makeReady() { mode_ = ControllerMode::Ready; }
  void finalize() { mode_ = ControllerMode::Unconfigured; }

private:
  ControllerMode mode_ = ControllerMode::Unconfigured;
};

}  // namespace tavsim

#endif
