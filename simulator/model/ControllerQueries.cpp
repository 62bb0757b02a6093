// Queries, kinematics, digital outputs and end-of-arm tools.
#include <utility>

#include "model/ResultText.h"
#include "model/SimulatedController.h"
#include "model/StateCodes.h"

namespace tavsim {

template <typename Value>
Reply SimulatedController::motorQuery(const ParamReader& params, Value value) {
  std::vector<std::size_t> motors;
  if (int state = readMotors(params, motors); state != StateCodes::kOk) {
    return done(state);
  }
  std::vector<double> values;
  for (std::size_t motor : motors) {
    values.push_back(value(motor));
  }
  return done(StateCodes::kOk, fixedList(values));
}

Reply SimulatedController::angles(const ParamReader& params, double now) {
  return motorQuery(params, [this, now](std::size_t motor) { return arm_.position(motor, now); });
}

Reply SimulatedController::velocities(const ParamReader& params, double now) {
  return motorQuery(params, [this, now](std::size_t motor) { return arm_.velocity(motor, now); });
}

Reply SimulatedController::currents(const ParamReader& params, double now) {
  std::array<double, ArmKinematics::kJoints> gravity{};
  if (hasArm()) {
    gravity = currentModel_.gravityTorques(armJoints(now));
  }
  return motorQuery(params, [this, now, &gravity](std::size_t motor) {
    if (arm_.released(motor)) {
      return 0.0;
    }
    double torque = motor < gravity.size() ? gravity[motor] : 0.0;
    return CurrentModel::current(torque, arm_.velocity(motor, now), arm_.acceleration(motor, now));
  });
}

Reply SimulatedController::inputs(const ParamReader& params, double now) {
  std::vector<int> channels;
  if (!params.ids("motor_ids", channels)) {
    return done(StateCodes::kBadParameter);
  }
  std::vector<int> levels;
  for (int channel : channels) {
    if (!io_.hasInput(channel)) {
      return done(StateCodes::kUnknownMotor);
    }
    levels.push_back(io_.input(channel, now));
  }
  return done(StateCodes::kOk, integerList(levels));
}

Reply SimulatedController::setOutput(const ParamReader& params, double) {
  std::vector<int> channels;
  std::vector<std::pair<int, int>> signals;
  if (!params.ids("motor_ids", channels) || !params.signals("signal", signals) ||
      channels.size() != signals.size()) {
    return done(StateCodes::kBadParameter);
  }
  for (std::size_t i = 0; i < signals.size(); ++i) {
    if (signals[i].first != channels[i] || (signals[i].second != 0 && signals[i].second != 1)) {
      return done(StateCodes::kBadParameter);
    }
    if (!io_.hasOutput(channels[i])) {
      return done(StateCodes::kUnknownMotor);
    }
  }
  for (const auto& [channel, level] : signals) {
    io_.setOutput(channel, level);
  }
  return done(StateCodes::kOk);
}

Reply SimulatedController::toolAction(const ParamReader& params, double now) {
  std::string name;
  std::string action;
  if (!params.text("name", name) || !params.text("action", action)) {
    return done(StateCodes::kBadParameter);
  }
  return done(io_.tools().act(name, action, now));
}

Reply SimulatedController::position(const ParamReader&, double now) {
  if (!hasArm()) {
    return done(StateCodes::kUnknownMotor);
  }
  Transform tool = kinematics_.forward(jointsFromDegrees(armJoints(now)));
  return done(StateCodes::kOk, poseList(transformToPose(tool)));
}

Reply SimulatedController::forward(const ParamReader& params, double) {
  std::vector<double> angles;
  if (!params.reals("angles", angles)) {
    return done(StateCodes::kBadParameter);
  }
  if (!hasArm()) {
    return done(StateCodes::kUnknownMotor);
  }
  if (angles.size() < ArmKinematics::kJoints) {
    return done(StateCodes::kBadParameter);
  }
  Transform tool = kinematics_.forward(jointsFromDegrees(angles));
  return done(StateCodes::kOk, poseList(transformToPose(tool)));
}

Reply SimulatedController::inverse(const ParamReader& params, double now) {
  Pose pose;
  if (!params.pose("position", pose)) {
    return done(StateCodes::kBadParameter);
  }
  if (!hasArm()) {
    return done(StateCodes::kUnknownMotor);
  }
  auto solution = kinematics_.nearestSolution(poseToTransform(pose),
                                              jointsFromDegrees(armJoints(now)),
                                              degToRad(planner_.jointLimit()));
  if (!solution) {
    return done(StateCodes::kUnreachable);
  }
  // One value per motor: the arm's joints, then the auxiliary axes where they stand.
  std::vector<double> joints = jointsToDegrees(*solution);
  for (std::size_t motor = joints.size(); motor < arm_.motorCount(); ++motor) {
    joints.push_back(arm_.position(motor, now));
  }
  return done(StateCodes::kOk, fixedList(joints));
}

}  // namespace tavsim
