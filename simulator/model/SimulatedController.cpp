#include "model/SimulatedController.h"

#include <algorithm>
#include <map>
#include <utility>

#include "model/ResultText.h"
#include "model/StateCodes.h"

namespace tavsim {

namespace {

// Joint range of every motor, degrees either way.
constexpr double kJointLimitDegrees = 360.0;

JointVector StartAngles(const ControllerOptions& options) {
  JointVector angles(options.motorCount, 0.0);
  for (std::size_t i = 0; i < angles.size() && i < options.initialAngles.size(); ++i) {
    angles[i] = options.initialAngles[i];
  }
  return angles;
}

}  // namespace

SimulatedController::SimulatedController(ControllerOptions options,
                                         std::shared_ptr<const Clock> sharedClock)
    : clock(std::move(sharedClock)),
      kinematics(ArmKinematics::Ur5()),
      planner(kinematics, kJointLimitDegrees, options.limits),
      currentModel(kinematics),
      arm(StartAngles(options)),
      io(options.outputCount) {
  _setDrives(_allMotors(), true);
}

const SimulatedController::Command* SimulatedController::_findCommand(
    const std::string& functionName) {
  using C = SimulatedController;
  static const std::map<std::string, Command> commands{
      {"Robot", {Access::Always, &C::_setup}},
      {"get_motor_ids", {Access::Always, &C::_motorIds}},
      {"finalize", {Access::Always, &C::_finalize}},
      {"recover", {Access::Configured, &C::_recover}},
      {"stop", {Access::Configured, &C::_stop}},
      {"calibrate", {Access::Configured, &C::_calibrate}},
      {"reset", {Access::Configured, &C::_reset}},
      {"move_to_angles", {Access::Motion, &C::_moveToAngles}},
      {"move_to_position", {Access::Motion, &C::_moveToPosition}},
      {"moveJ", {Access::Motion, &C::_moveJ}},
      {"moveL", {Access::Motion, &C::_moveL}},
      {"moveP", {Access::Motion, &C::_moveP}},
      {"hold", {Access::Configured, &C::_hold}},
      {"release", {Access::Configured, &C::_release}},
      {"wait_for_motors", {Access::Configured, &C::_waitForMotors}},
      {"set_output", {Access::Configured, &C::_setOutput}},
      {"set_EOAT_action", {Access::Configured, &C::_toolAction}},
      {"get_angles", {Access::Configured, &C::_angles}},
      {"get_velocity", {Access::Configured, &C::_velocities}},
      {"get_current", {Access::Configured, &C::_currents}},
      {"get_input", {Access::Configured, &C::_inputs}},
      {"get_position", {Access::Configured, &C::_position}},
      {"forward", {Access::Configured, &C::_forward}},
      {"inverse", {Access::Configured, &C::_inverse}},
  };
  auto found = commands.find(functionName);
  return found == commands.end() ? nullptr : &found->second;
}

Reply SimulatedController::_done(int state, std::string result) {
  return Reply{StateText(state), std::move(result), 0};
}

Reply SimulatedController::Handle(const std::string& functionName, const Params& params) {
  std::lock_guard<std::mutex> lock(mutex);
  double now = clock->Now();
  _collectArrivals(now);
  const Command* command = _findCommand(functionName);
  if (command == nullptr) {
    return _done(StateCodes::kUnknownCommand);
  }
  if (!controllerState.Allows(command->access)) {
    return _done(StateCodes::kRefusedInState);
  }
  return (this->*(command->run))(ParamReader(params), now);
}

std::vector<Completion> SimulatedController::Poll() {
  std::lock_guard<std::mutex> lock(mutex);
  _collectArrivals(clock->Now());
  return std::exchange(finished, {});
}

void SimulatedController::Cancel(std::uint64_t ticket) {
  std::lock_guard<std::mutex> lock(mutex);
  auto matches = [ticket](const auto& entry) { return entry.ticket == ticket; };
  waits.erase(std::remove_if(waits.begin(), waits.end(), matches), waits.end());
  finished.erase(std::remove_if(finished.begin(), finished.end(), matches), finished.end());
}

std::optional<double> SimulatedController::SecondsUntilNextCompletion() const {
  std::lock_guard<std::mutex> lock(mutex);
  if (!finished.empty()) {
    return 0.0;
  }
  double now = clock->Now();
  std::optional<double> earliest;
  for (const Wait& wait : waits) {
    double rest = now;
    for (std::size_t motor : wait.motors) {
      rest = std::max(rest, arm.RestTime(motor, now));
    }
    earliest = std::min(earliest.value_or(rest), rest);
  }
  if (!earliest) {
    return std::nullopt;
  }
  return *earliest - now;
}

ControllerMode SimulatedController::Mode() const {
  std::lock_guard<std::mutex> lock(mutex);
  return controllerState.Mode();
}

int SimulatedController::_resolveMotors(const std::vector<int>& ids,
                                        std::vector<std::size_t>& motors) const {
  motors.clear();
  for (int id : ids) {
    if (id < 1 || static_cast<std::size_t>(id) > arm.MotorCount()) {
      return StateCodes::kUnknownMotor;
    }
    motors.push_back(static_cast<std::size_t>(id - 1));
  }
  return StateCodes::kOk;
}

int SimulatedController::_readMotors(const ParamReader& params,
                                     std::vector<std::size_t>& motors) const {
  std::vector<int> ids;
  if (!params.Ids("motor_ids", ids)) {
    return StateCodes::kBadParameter;
  }
  return _resolveMotors(ids, motors);
}

std::vector<std::size_t> SimulatedController::_armMotors() const {
  std::vector<std::size_t> motors(ArmKinematics::kJoints);
  for (std::size_t i = 0; i < motors.size(); ++i) {
    motors[i] = i;
  }
  return motors;
}

std::vector<std::size_t> SimulatedController::_allMotors() const {
  std::vector<std::size_t> motors(arm.MotorCount());
  for (std::size_t i = 0; i < motors.size(); ++i) {
    motors[i] = i;
  }
  return motors;
}

JointVector SimulatedController::_armJoints(double now) const {
  return arm.Positions(_armMotors(), now);
}

void SimulatedController::_collectArrivals(double now) {
  arm.Settle(now);
  auto arrived = [this, now](const Wait& wait) {
    return std::none_of(wait.motors.begin(), wait.motors.end(),
                        [this, now](std::size_t motor) { return arm.Moving(motor, now); });
  };
  for (const Wait& wait : waits) {
    if (arrived(wait)) {
      finished.push_back({wait.ticket, _done(wait.interrupted ? StateCodes::kMotionInterrupted
                                                              : StateCodes::kOk)});
    }
  }
  waits.erase(std::remove_if(waits.begin(), waits.end(), arrived), waits.end());
}

void SimulatedController::_haltMotors(const std::vector<std::size_t>& motors, double now) {
  std::vector<std::size_t> halted = arm.Halt(motors, now);
  for (Wait& wait : waits) {
    wait.interrupted =
        wait.interrupted ||
        std::any_of(wait.motors.begin(), wait.motors.end(), [&halted](std::size_t motor) {
          return std::find(halted.begin(), halted.end(), motor) != halted.end();
        });
  }
}

void SimulatedController::_setDrives(const std::vector<std::size_t>& motors, bool limp) {
  for (std::size_t motor : motors) {
    if (limp) {
      arm.Release(motor);
    } else {
      arm.Hold(motor);
    }
  }
}

void SimulatedController::_quiesce(double now) {
  _haltMotors(_allMotors(), now);
  io.ClearOutputs();
  io.Tools().Reset();
}

Reply SimulatedController::_awaitRest(std::vector<std::size_t> motors, double now) {
  bool resting = std::none_of(motors.begin(), motors.end(),
                              [this, now](std::size_t motor) { return arm.Moving(motor, now); });
  if (resting) {
    return _done(StateCodes::kOk);
  }
  std::uint64_t ticket = nextTicket++;
  waits.push_back({ticket, std::move(motors)});
  return Reply{{}, {}, ticket};
}

Reply SimulatedController::_setup(const ParamReader& params, double) {
  std::string name;
  bool isVirtual = false;
  if (!params.Text("name", name) || !params.Object("parameters") ||
      !params.Flag("virtual", isVirtual)) {
    return _done(StateCodes::kBadParameter);
  }
  if (controllerState.Mode() == ControllerMode::Unconfigured) {
    _setDrives(_allMotors(), false);
  }
  controllerState.Configure();
  return _done(StateCodes::kOk);
}

Reply SimulatedController::_motorIds(const ParamReader&, double) {
  std::vector<int> ids;
  if (controllerState.Mode() != ControllerMode::Unconfigured) {
    for (std::size_t motor : _allMotors()) {
      ids.push_back(static_cast<int>(motor + 1));
    }
  }
  return _done(StateCodes::kOk, IntegerList(ids));
}

Reply SimulatedController::_finalize(const ParamReader&, double now) {
  _quiesce(now);
  _setDrives(_allMotors(), true);
  controllerState.Finalize();
  return _done(StateCodes::kOk);
}

Reply SimulatedController::_recover(const ParamReader&, double) {
  controllerState.MakeReady();
  return _done(StateCodes::kOk);
}

Reply SimulatedController::_stop(const ParamReader&, double now) {
  _haltMotors(_allMotors(), now);
  controllerState.Stop();
  return _done(StateCodes::kOk);
}

Reply SimulatedController::_calibrate(const ParamReader&, double now) {
  for (std::size_t motor : _allMotors()) {
    if (arm.Moving(motor, now)) {
      return _done(StateCodes::kRefusedInState);
    }
  }
  _setDrives(_allMotors(), false);
  controllerState.MakeReady();
  return _done(StateCodes::kOk);
}

Reply SimulatedController::_reset(const ParamReader&, double now) {
  _quiesce(now);
  _setDrives(_allMotors(), false);
  controllerState.MakeReady();
  return _done(StateCodes::kOk);
}

}  // namespace tavsim
