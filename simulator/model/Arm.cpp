#include "model/Arm.h"

#include <algorithm>
#include <utility>

namespace tavsim {

Arm::Arm(JointVector initialDegrees) {
  for (double degrees : initialDegrees) {
    Motor motor;
    motor.position = degrees;
    motors_.push_back(motor);
  }
}

double Arm::position(std::size_t motor, double now) const {
  const Motor& m = motors_[motor];
  if (!m.motion) {
    return m.position;
  }
  return m.motion->trajectory->positionAt(now - m.motion->start)[m.column];
}

double Arm::velocity(std::size_t motor, double now) const {
  const Motor& m = motors_[motor];
  if (!m.motion) {
    return 0.0;
  }
  return m.motion->trajectory->velocityAt(now - m.motion->start)[m.column];
}

double Arm::acceleration(std::size_t motor, double now) const {
  const Motor& m = motors_[motor];
  if (!m.motion) {
    return 0.0;
  }
  return m.motion->trajectory->accelerationAt(now - m.motion->start)[m.column];
}

JointVector Arm::positions(const std::vector<std::size_t>& motors, double now) const {
  JointVector result;
  for (std::size_t motor : motors) {
    result.push_back(position(motor, now));
  }
  return result;
}

bool Arm::moving(std::size_t motor, double now) const {
  const auto& motion = motors_[motor].motion;
  return motion && now < motion->end();
}

double Arm::restTime(std::size_t motor, double now) const {
  return moving(motor, now) ? motors_[motor].motion->end() : now;
}

void Arm::start(std::shared_ptr<const Trajectory> trajectory,
                const std::vector<std::size_t>& motors, double now) {
  auto motion = std::make_shared<Motion>();
  motion->trajectory = std::move(trajectory);
  motion->start = now;
  for (std::size_t column = 0; column < motors.size(); ++column) {
    Motor& m = motors_[motors[column]];
    m.position = position(motors[column], now);
    m.motion = motion;
    m.column = column;
  }
}

std::vector<std::size_t> Arm::halt(const std::vector<std::size_t>& motors, double now) {
  std::vector<const Motion*> stopping;
  for (std::size_t motor : motors) {
    if (moving(motor, now)) {
      stopping.push_back(motors_[motor].motion.get());
    }
  }
  std::vector<std::size_t> halted;
  for (std::size_t motor = 0; motor < motors_.size(); ++motor) {
    const Motion* motion = motors_[motor].motion.get();
    if (motion && std::find(stopping.begin(), stopping.end(), motion) != stopping.end()) {
      freeze(motor, now);
      halted.push_back(motor);
    }
  }
  return halted;
}

void Arm::settle(double now) {
  for (std::size_t motor = 0; motor < motors_.size(); ++motor) {
    if (motors_[motor].motion && !moving(motor, now)) {
      freeze(motor, now);
    }
  }
}

void Arm::freeze(std::size_t motor, double now) {
  Motor& m = motors_[motor];
  m.position = position(motor, now);
  m.motion.reset();
}

}  // namespace tavsim
