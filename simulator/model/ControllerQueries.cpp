// Queries, kinematics, digital outputs and end-of-arm tools.
#include <utility>

#include "model/ResultText.h"
#include "model/SimulatedController.h"
#include "model/StateCodes.h"

namespace tavsim {

template <typename Value>
Reply SimulatedController::_motorQuery(const ParamReader& params, Value value) {
  std::vector<std::size_t> motors;
  if (int state = _readMotors(params, motors); state != StateCodes::kOk) {
    return _done(state);
  }
  std::vector<double> values;
  for (std::size_t motor : motors) {
    values.push_back(value(motor));
  }
  return _done(StateCodes::kOk, FixedList(values));
}

Reply SimulatedController::_angles(const ParamReader& params, double now) {
  return _motorQuery(params, [this, now](std::size_t motor) { return arm.Position(motor, now); });
}

Reply SimulatedController::_velocities(const ParamReader& params, double now) {
  return _motorQuery(params, [this, now](std::size_t motor) { return arm.Velocity(motor, now); });
}

std::array<double, ArmKinematics::kJoints> SimulatedController::_gravityTorques(double now) const {
  std::array<double, ArmKinematics::kJoints> gravity{};
  if (_hasArm()) {
    gravity = currentModel.GravityTorques(_armJoints(now));
  }
  return gravity;
}

double SimulatedController::_motorCurrent(std::size_t motor,
                                          const std::array<double, ArmKinematics::kJoints>& gravity,
                                          double now) const {
  if (arm.Released(motor)) {
    return 0.0;
  }
  double torque = motor < gravity.size() ? gravity[motor] : 0.0;
  return CurrentModel::Current(torque, arm.Velocity(motor, now), arm.Acceleration(motor, now));
}

Reply SimulatedController::_currents(const ParamReader& params, double now) {
  const auto gravity = _gravityTorques(now);
  return _motorQuery(params, [this, now, &gravity](std::size_t motor) {
    return _motorCurrent(motor, gravity, now);
  });
}

Reply SimulatedController::_inputs(const ParamReader& params, double now) {
  std::vector<int> channels;
  if (!params.Ids("motor_ids", channels)) {
    return _done(StateCodes::kBadParameter);
  }
  std::vector<int> levels;
  for (int channel : channels) {
    if (!io.HasInput(channel)) {
      return _done(StateCodes::kUnknownMotor);
    }
    levels.push_back(io.Input(channel, now));
  }
  return _done(StateCodes::kOk, IntegerList(levels));
}

Reply SimulatedController::_setOutput(const ParamReader& params, double) {
  std::vector<int> channels;
  std::vector<std::pair<int, int>> signals;
  if (!params.Ids("motor_ids", channels) || !params.Signals("signal", signals) ||
      channels.size() != signals.size()) {
    return _done(StateCodes::kBadParameter);
  }
  for (std::size_t i = 0; i < signals.size(); ++i) {
    if (signals[i].first != channels[i] || (signals[i].second != 0 && signals[i].second != 1)) {
      return _done(StateCodes::kBadParameter);
    }
    if (!io.HasOutput(channels[i])) {
      return _done(StateCodes::kUnknownMotor);
    }
  }
  for (const auto& [channel, level] : signals) {
    io.SetOutput(channel, level);
  }
  return _done(StateCodes::kOk);
}

Reply SimulatedController::_toolAction(const ParamReader& params, double now) {
  std::string name;
  std::string action;
  if (!params.Text("name", name) || !params.Text("action", action)) {
    return _done(StateCodes::kBadParameter);
  }
  return _done(io.Tools().Act(name, action, now));
}

Reply SimulatedController::_position(const ParamReader&, double now) {
  if (!_hasArm()) {
    return _done(StateCodes::kUnknownMotor);
  }
  Transform tool = kinematics.Forward(JointsFromDegrees(_armJoints(now)));
  return _done(StateCodes::kOk, PoseList(TransformToPose(tool)));
}

Reply SimulatedController::_forward(const ParamReader& params, double) {
  std::vector<double> angles;
  if (!params.Reals("angles", angles)) {
    return _done(StateCodes::kBadParameter);
  }
  if (!_hasArm()) {
    return _done(StateCodes::kUnknownMotor);
  }
  if (angles.size() < ArmKinematics::kJoints) {
    return _done(StateCodes::kBadParameter);
  }
  Transform tool = kinematics.Forward(JointsFromDegrees(angles));
  return _done(StateCodes::kOk, PoseList(TransformToPose(tool)));
}

Reply SimulatedController::_inverse(const ParamReader& params, double now) {
  Pose pose;
  if (!params.SinglePose("position", pose)) {
    return _done(StateCodes::kBadParameter);
  }
  if (!_hasArm()) {
    return _done(StateCodes::kUnknownMotor);
  }
  auto solution = kinematics.NearestSolution(
      PoseToTransform(pose), JointsFromDegrees(_armJoints(now)), DegToRad(planner.JointLimit()));
  if (!solution) {
    return _done(StateCodes::kUnreachable);
  }
  // One value per motor: the arm's joints, then the auxiliary axes where they stand.
  std::vector<double> joints = JointsToDegrees(*solution);
  for (std::size_t motor = joints.size(); motor < arm.MotorCount(); ++motor) {
    joints.push_back(arm.Position(motor, now));
  }
  return _done(StateCodes::kOk, FixedList(joints));
}

}  // namespace tavsim
