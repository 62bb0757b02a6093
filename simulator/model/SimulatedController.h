#ifndef TAVSIM_MODEL_SIMULATEDCONTROLLER_H
#define TAVSIM_MODEL_SIMULATEDCONTROLLER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "model/Arm.h"
#include "model/ArmKinematics.h"
#include "model/Clock.h"
#include "model/ControllerSnapshot.h"
#include "model/ControllerState.h"
#include "model/CurrentModel.h"
#include "model/IoPanel.h"
#include "model/MotionPlanner.h"
#include "model/ParamReader.h"

namespace tavsim {

struct ControllerOptions {
  // Motors 1..6 are the arm's joints; further motors are auxiliary axes outside the
  // kinematic chain. With fewer than six the pose commands answer kUnknownMotor.
  std::size_t motorCount = 6;
  std::size_t outputCount = 8;
  // Start positions in degrees, one per motor (missing ones start at 0): a bent, non-singular
  // arm with the tool pointing down.
  std::vector<double> initialAngles{0.0, -90.0, 90.0, -90.0, -90.0, 0.0};
  // Speed and acceleration ceilings, floor and elbow folding.
  ArmLimits limits{};
};

// The content of a command reply: "state" text and "result1" text (empty: no result child).
// A pending reply carries a non-zero ticket and no content yet; the finished reply comes
// later from Poll() under the same ticket.
struct Reply {
  std::string state;
  std::string result1;
  std::uint64_t ticket = 0;

  bool Pending() const { return ticket != 0; }
};

struct Completion {
  std::uint64_t ticket;
  Reply reply;
};

// One simulated arm behind the controller's command set. Takes one decoded command (wire
// function name and parameter texts as the client sends them) and answers it. Every public
// operation locks one internal mutex, so any number of connection threads may share it;
// all clients then drive the same arm.
class SimulatedController {
public:
  explicit SimulatedController(ControllerOptions options = {}, std::shared_ptr<const Clock> clock =
                                                                   std::make_shared<SteadyClock>());

  // A finished reply, or a pending one ("wait_for_motors", or a move with "block" 1) that a
  // later Poll() finishes.
  Reply Handle(const std::string& functionName, const Params& params);
  // Pending replies finished since the last call (the motors arrived or were halted). Call
  // after every Handle() and when SecondsUntilNextCompletion() has passed.
  std::vector<Completion> Poll();
  // Drops a pending reply nobody will collect (its connection closed).
  void Cancel(std::uint64_t ticket);
  // Time until Poll() would next have something if nothing else happens: 0 when it has now,
  // nothing when no reply is pending.
  std::optional<double> SecondsUntilNextCompletion() const;

  ControllerMode Mode() const;
  // Everything an onlooker sees of the controller now, read at one instant.
  ControllerSnapshot Snapshot() const;
  std::size_t MotorCount() const { return arm.MotorCount(); }

private:
  using Handler = Reply (SimulatedController::*)(const ParamReader&, double);
  struct Command {
    Access access;
    Handler run;
  };
  struct Wait {
    std::uint64_t ticket;
    std::vector<std::size_t> motors;
    // Its motion was halted: it ends with kMotionInterrupted once the motors stand still.
    bool interrupted = false;
  };

  static const Command* _findCommand(const std::string& functionName);
  static Reply _done(int state, std::string result = {});

  // Motor ids (1-based) to indices; kOk or kUnknownMotor.
  int _resolveMotors(const std::vector<int>& ids, std::vector<std::size_t>& motors) const;
  // The "motor_ids" parameter resolved; kOk, kBadParameter or kUnknownMotor.
  int _readMotors(const ParamReader& params, std::vector<std::size_t>& motors) const;
  bool _hasArm() const { return arm.MotorCount() >= ArmKinematics::kJoints; }
  std::vector<std::size_t> _armMotors() const;
  std::vector<std::size_t> _allMotors() const;
  JointVector _armJoints(double now) const;

  void _collectArrivals(double now);
  // Halts the motions of `motors`; pending waits on them finish as interrupted.
  void _haltMotors(const std::vector<std::size_t>& motors, double now);
  // Powers (limp false) or releases (limp true) the motors.
  void _setDrives(const std::vector<std::size_t>& motors, bool limp);
  // Halts everything, clears the outputs and frees the tools.
  void _quiesce(double now);
  Reply _awaitRest(std::vector<std::size_t> motors, double now);
  // Starts a planned motion (null: nothing to do) and answers it, pending if `block`.
  Reply _launch(std::unique_ptr<Trajectory> trajectory, const std::vector<std::size_t>& motors,
                bool block, double now);
  Reply _launchToolPath(const std::vector<Waypoint>& waypoints, double velocity,
                        double acceleration, double dwell, bool block, double now);
  // kOk, or why the arm cannot follow a tool path now.
  int _armMotionCheck() const;

  // Session and state commands.
  Reply _setup(const ParamReader& params, double now);
  Reply _motorIds(const ParamReader& params, double now);
  Reply _finalize(const ParamReader& params, double now);
  Reply _recover(const ParamReader& params, double now);
  Reply _stop(const ParamReader& params, double now);
  Reply _calibrate(const ParamReader& params, double now);
  Reply _reset(const ParamReader& params, double now);
  // Motion.
  Reply _moveToAngles(const ParamReader& params, double now);
  Reply _moveToPosition(const ParamReader& params, double now);
  Reply _moveJ(const ParamReader& params, double now);
  Reply _moveL(const ParamReader& params, double now);
  Reply _moveP(const ParamReader& params, double now);
  // Motors, outputs, tools.
  Reply _hold(const ParamReader& params, double now);
  Reply _release(const ParamReader& params, double now);
  Reply _waitForMotors(const ParamReader& params, double now);
  Reply _switchDrives(const ParamReader& params, double now, bool limp);
  Reply _setOutput(const ParamReader& params, double now);
  Reply _toolAction(const ParamReader& params, double now);
  // Queries and kinematics.
  Reply _angles(const ParamReader& params, double now);
  Reply _velocities(const ParamReader& params, double now);
  Reply _currents(const ParamReader& params, double now);
  Reply _inputs(const ParamReader& params, double now);
  Reply _position(const ParamReader& params, double now);
  Reply _forward(const ParamReader& params, double now);
  Reply _inverse(const ParamReader& params, double now);

  // Gravity torque on each arm joint now (none without an arm), and a motor's current.
  std::array<double, ArmKinematics::kJoints> _gravityTorques(double now) const;
  double _motorCurrent(std::size_t motor, const std::array<double, ArmKinematics::kJoints>& gravity,
                       double now) const;

  // Shared shape of the per-motor queries.
  template <typename Value>
  Reply _motorQuery(const ParamReader& params, Value value);

  std::shared_ptr<const Clock> clock;
  ArmKinematics kinematics;
  MotionPlanner planner;
  CurrentModel currentModel;
  mutable std::mutex mutex;
  ControllerState controllerState;
  Arm arm;
  IoPanel io;
  std::vector<Wait> waits;
  std::vector<Completion> finished;
  std::uint64_t nextTicket = 1;
};

}  // namespace tavsim

#endif
