#include "model/Arm.h"

#include <algorithm>
#include <utility>

namespace tavsim {

Arm::Arm(JointVector initialDegrees) {
  for (double degrees : initialDegrees) {
    Motor motor;
    motor.position = degrees;
    motorStates.push_back(motor);
  }
}

double Arm::Position(std::size_t motor, double now) const {
  const Motor& m = motorStates[motor];
  if (!m.motion) {
    return m.position;
  }
  return m.motion->trajectory->PositionAt(now - m.motion->start)[m.column];
}

double Arm::Velocity(std::size_t motor, double now) const {
  const Motor& m = motorStates[motor];
  if (!m.motion) {
    return 0.0;
  }
  return m.motion->trajectory->VelocityAt(now - m.motion->start)[m.column];
}

double Arm::Acceleration(std::size_t motor, double now) const {
  const Motor& m = motorStates[motor];
  if (!m.motion) {
    return 0.0;
  }
  return m.motion->trajectory->AccelerationAt(now - m.motion->start)[m.column];
}

JointVector Arm::Positions(const std::vector<std::size_t>& motors, double now) const {
  JointVector result;
  for (std::size_t motor : motors) {
    result.push_back(Position(motor, now));
  }
  return result;
}

JointState Arm::State(const std::vector<std::size_t>& motors, double now) const {
  JointState state;
  for (std::size_t motor : motors) {
    const Motor& m = motorStates[motor];
    state.position.push_back(Position(motor, now));
    state.velocity.push_back(Velocity(motor, now));
    state.stoppingTime.push_back(
        Moving(motor, now) ? m.motion->trajectory->StoppingTimeAt(now - m.motion->start)[m.column]
                           : 0.0);
  }
  return state;
}

bool Arm::Moving(std::size_t motor, double now) const {
  const auto& motion = motorStates[motor].motion;
  return motion && now < motion->End();
}

double Arm::RestTime(std::size_t motor, double now) const {
  return Moving(motor, now) ? motorStates[motor].motion->End() : now;
}

void Arm::Start(std::shared_ptr<const Trajectory> trajectory,
                const std::vector<std::size_t>& motors, double now) {
  auto motion = std::make_shared<Motion>();
  motion->trajectory = std::move(trajectory);
  motion->start = now;
  for (std::size_t column = 0; column < motors.size(); ++column) {
    Motor& m = motorStates[motors[column]];
    m.position = Position(motors[column], now);
    m.motion = motion;
    m.column = column;
  }
}

std::vector<std::size_t> Arm::Halt(const std::vector<std::size_t>& motors, double now) {
  std::vector<const Motion*> stopping;
  for (std::size_t motor : motors) {
    if (Moving(motor, now)) {
      stopping.push_back(motorStates[motor].motion.get());
    }
  }
  std::vector<std::size_t> halted;
  for (std::size_t motor = 0; motor < motorStates.size(); ++motor) {
    const Motion* motion = motorStates[motor].motion.get();
    if (motion && std::find(stopping.begin(), stopping.end(), motion) != stopping.end()) {
      halted.push_back(motor);
    }
  }
  if (!halted.empty()) {
    Start(std::make_shared<Brake>(State(halted, now)), halted, now);
  }
  return halted;
}

void Arm::Settle(double now) {
  for (std::size_t motor = 0; motor < motorStates.size(); ++motor) {
    if (motorStates[motor].motion && !Moving(motor, now)) {
      _freeze(motor, now);
    }
  }
}

void Arm::_freeze(std::size_t motor, double now) {
  Motor& m = motorStates[motor];
  m.position = Position(motor, now);
  m.motion.reset();
}

}  // namespace tavsim
