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

JointVector startAngles(const ControllerOptions& options) {
  JointVector angles(options.motorCount, 0.0);
  for (std::size_t i = 0; i < angles.size() && i < options.initialAngles.size(); ++i) {
    angles[i] = options.initialAngles[i];
  }
  return angles;
}

}  // namespace

SimulatedController::SimulatedController(ControllerOptions options,
                                         std::shared_ptr<const Clock> clock)
    : clock_(std::move(clock)),
      kinematics_(ArmKinematics::ur5()),
      planner_(kinematics_, kJointLimitDegrees),
      currentModel_(kinematics_),
      arm_(startAngles(options)),
      io_(options.outputCount) {
  setDrives(allMotors(), true);
}

const SimulatedController::Command* SimulatedController::findCommand(
    const std::string& functionName) {
  using C = SimulatedController;
  static const std::map<std::string, Command> commands{
      {"Robot", {Access::Always, &C::setup}},
      {"get_motor_ids", {Access::Always, &C::motorIds}},
      {"finalize", {Access::Always, &C::finalize}},
      {"recover", {Access::Configured, &C::recover}},
      {"stop", {Access::Configured, &C::stop}},
      {"calibrate", {Access::Configured, &C::calibrate}},
      {"reset", {Access::Configured, &C::reset}},
      {"move_to_angles", {Access::Motion, &C::moveToAngles}},
      {"move_to_position", {Access::Motion, &C::moveToPosition}},
      {"moveJ", {Access::Motion, &C::moveJ}},
      {"moveL", {Access::Motion, &C::moveL}},
      {"moveP", {Access::Motion, &C::moveP}},
      {"hold", {Access::Configured, &C::hold}},
      {"release", {Access::Configured, &C::release}},
      {"wait_for_motors", {Access::Configured, &C::waitForMotors}},
      {"set_output", {Access::Configured, &C::setOutput}},
      {"set_EOAT_action", {Access::Configured, &C::toolAction}},
      {"get_angles", {Access::Configured, &C::angles}},
      {"get_velocity", {Access::Configured, &C::velocities}},
      {"get_current", {Access::Configured, &C::currents}},
      {"get_input", {Access::Configured, &C::inputs}},
      {"get_position", {Access::Configured, &C::position}},
      {"forward", {Access::Configured, &C::forward}},
      {"inverse", {Access::Configured, &C::inverse}},
  };
  auto found = commands.find(functionName);
  return found == commands.end() ? nullptr : &found->second;
}

Reply SimulatedController::done(int state, std::string result) {
  return Reply{stateText(state), std::move(result), 0};
}

Reply SimulatedController::handle(const std::string& functionName, const Params& params) {
  std::lock_guard<std::mutex> lock(mutex_);
  double now = clock_->now();
  collectArrivals(now);
  const Command* command = findCommand(functionName);
  if (command == nullptr) {
    return done(StateCodes::kUnknownCommand);
  }
  if (!state_.allows(command->access)) {
    return done(StateCodes::kRefusedInState);
  }
  return (this->*(command->run))(ParamReader(params), now);
}

std::vector<Completion> SimulatedController::poll() {
  std::lock_guard<std::mutex> lock(mutex_);
  collectArrivals(clock_->now());
  return std::exchange(finished_, {});
}

void SimulatedController::cancel(std::uint64_t ticket) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto matches = [ticket](const auto& entry) { return entry.ticket == ticket; };
  waits_.erase(std::remove_if(waits_.begin(), waits_.end(), matches), waits_.end());
  finished_.erase(std::remove_if(finished_.begin(), finished_.end(), matches), finished_.end());
}

std::optional<double> SimulatedController::secondsUntilNextCompletion() const {
  std::lock_guard<std::mutex> lock(mutex_);
  if (!finished_.empty()) {
    return 0.0;
  }
  double now = clock_->now();
  std::optional<double> earliest;
  for (const Wait& wait : waits_) {
    double rest = now;
    for (std::size_t motor : wait.motors) {
      rest = std::max(rest, arm_.restTime(motor, now));
    }
    earliest = std::min(earliest.value_or(rest), rest);
  }
  if (!earliest) {
    return std::nullopt;
  }
  return *earliest - now;
}

ControllerMode SimulatedController::mode() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return state_.mode();
}

int SimulatedController::resolveMotors(const std::vector<int>& ids,
                                       std::vector<std::size_t>& motors) const {
  motors.clear();
  for (int id : ids) {
    if (id < 1 || static_cast<std::size_t>(id) > arm_.motorCount()) {
      return StateCodes::kUnknownMotor;
    }
    motors.push_back(static_cast<std::size_t>(id - 1));
  }
  return StateCodes::kOk;
}

int SimulatedController::readMotors(const ParamReader& params,
                                    std::vector<std::size_t>& motors) const {
  std::vector<int> ids;
  if (!params.ids("motor_ids", ids)) {
    return StateCodes::kBadParameter;
  }
  return resolveMotors(ids, motors);
}

std::vector<std::size_t> SimulatedController::armMotors() const {
  std::vector<std::size_t> motors(ArmKinematics::kJoints);
  for (std::size_t i = 0; i < motors.size(); ++i) {
    motors[i] = i;
  }
  return motors;
}

std::vector<std::size_t> SimulatedController::allMotors() const {
  std::vector<std::size_t> motors(arm_.motorCount());
  for (std::size_t i = 0; i < motors.size(); ++i) {
    motors[i] = i;
  }
  return motors;
}

JointVector SimulatedController::armJoints(double now) const {
  return arm_.positions(armMotors(), now);
}

void SimulatedController::collectArrivals(double now) {
  arm_.settle(now);
  auto arrived = [this, now](const Wait& wait) {
    return std::none_of(wait.motors.begin(), wait.motors.end(),
                        [this, now](std::size_t motor) { return arm_.moving(motor, now); });
  };
  for (const Wait& wait : waits_) {
    if (arrived(wait)) {
      finished_.push_back({wait.ticket, done(StateCodes::kOk)});
    }
  }
  waits_.erase(std::remove_if(waits_.begin(), waits_.end(), arrived), waits_.end());
}

void SimulatedController::haltMotors(const std::vector<std::size_t>& motors, double now) {
  std::vector<std::size_t> halted = arm_.halt(motors, now);
  auto interrupted = [&halted](const Wait& wait) {
    return std::any_of(wait.motors.begin(), wait.motors.end(), [&halted](std::size_t motor) {
      return std::find(halted.begin(), halted.end(), motor) != halted.end();
    });
  };
  for (const Wait& wait : waits_) {
    if (interrupted(wait)) {
      finished_.push_back({wait.ticket, done(StateCodes::kMotionInterrupted)});
    }
  }
  waits_.erase(std::remove_if(waits_.begin(), waits_.end(), interrupted), waits_.end());
}

void SimulatedController::setDrives(const std::vector<std::size_t>& motors, bool limp) {
  for (std::size_t motor : motors) {
    if (limp) {
      arm_.release(motor);
    } else {
      arm_.hold(motor);
    }
  }
}

void SimulatedController::quiesce(double now) {
  haltMotors(allMotors(), now);
  io_.clearOutputs();
  io_.tools().reset();
}

Reply SimulatedController::awaitRest(std::vector<std::size_t> motors, double now) {
  bool resting = std::none_of(motors.begin(), motors.end(),
                              [this, now](std::size_t motor) { return arm_.moving(motor, now); });
  if (resting) {
    return done(StateCodes::kOk);
  }
  std::uint64_t ticket = nextTicket_++;
  waits_.push_back({ticket, std::move(motors)});
  return Reply{{}, {}, ticket};
}

Reply SimulatedController::setup(const ParamReader& params, double) {
  std::string name;
  bool isVirtual = false;
  if (!params.text("name", name) || !params.object("parameters") ||
      !params.flag("virtual", isVirtual)) {
    return done(StateCodes::kBadParameter);
  }
  if (state_.mode() == ControllerMode::Unconfigured) {
    setDrives(allMotors(), false);
  }
  state_.configure();
  return done(StateCodes::kOk);
}

Reply SimulatedController::motorIds(const ParamReader&, double) {
  std::vector<int> ids;
  if (state_.mode() != ControllerMode::Unconfigured) {
    for (std::size_t motor : allMotors()) {
      ids.push_back(static_cast<int>(motor + 1));
    }
  }
  return done(StateCodes::kOk, integerList(ids));
}

Reply SimulatedController::finalize(const ParamReader&, double now) {
  quiesce(now);
  setDrives(allMotors(), true);
  state_.finalize();
  return done(StateCodes::kOk);
}

Reply SimulatedController::recover(const ParamReader&, double) {
  state_.makeReady();
  return done(StateCodes::kOk);
}

Reply SimulatedController::stop(const ParamReader&, double now) {
  haltMotors(allMotors(), now);
  state_.stop();
  return done(StateCodes::kOk);
}

Reply SimulatedController::calibrate(const ParamReader&, double now) {
  for (std::size_t motor : allMotors()) {
    if (arm_.moving(motor, now)) {
      return done(StateCodes::kRefusedInState);
    }
  }
  setDrives(allMotors(), false);
  state_.makeReady();
  return done(StateCodes::kOk);
}

Reply SimulatedController::reset(const ParamReader&, double now) {
  quiesce(now);
  setDrives(allMotors(), false);
  state_.makeReady();
  return done(StateCodes::kOk);
}

}  // namespace tavsim
