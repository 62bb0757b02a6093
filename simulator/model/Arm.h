#ifndef TAVSIM_MODEL_ARM_H
#define TAVSIM_MODEL_ARM_H

#include <cstddef>
#include <memory>
#include <vector>

#include "model/Trajectory.h"

namespace tavsim {

// The motors of the arm and the motions driving them, evaluated lazily at a given time
// (seconds on the controller's clock). Motors are addressed by index 0..n-1 here.
//
// A held motor is powered and keeps or follows its commanded position. A released motor is
// limp: its drive is off, so it draws no current, accepts no targets and stays where it was
// let go (the simulated joints have enough friction not to sag).
class Arm {
public:
  explicit Arm(JointVector initialDegrees);

  std::size_t MotorCount() const { return motorStates.size(); }

  double Position(std::size_t motor, double now) const;
  double Velocity(std::size_t motor, double now) const;
  double Acceleration(std::size_t motor, double now) const;
  JointVector Positions(const std::vector<std::size_t>& motors, double now) const;
  // Positions, speeds and stopping times of `motors`, for a motion that takes them over.
  JointState State(const std::vector<std::size_t>& motors, double now) const;
  bool Moving(std::size_t motor, double now) const;
  // When the motor comes to rest if nothing intervenes (now for a motor at rest).
  double RestTime(std::size_t motor, double now) const;
  bool Released(std::size_t motor) const { return motorStates[motor].released; }

  // Starts a motion whose trajectory columns drive `motors` in order. Motors taken from a
  // running motion leave it where they are; the rest of that motion carries on.
  void Start(std::shared_ptr<const Trajectory> trajectory, const std::vector<std::size_t>& motors,
             double now);
  // Brakes every running motion that drives one of `motors`: all its motors slow down to rest
  // at the acceleration of that motion. Returns the motors that were moving.
  std::vector<std::size_t> Halt(const std::vector<std::size_t>& motors, double now);
  void Hold(std::size_t motor) { motorStates[motor].released = false; }
  void Release(std::size_t motor) { motorStates[motor].released = true; }
  // Forgets the motions that have ended, keeping their final positions.
  void Settle(double now);

private:
  struct Motion {
    std::shared_ptr<const Trajectory> trajectory;
    double start = 0.0;

    double End() const { return start + trajectory->Duration(); }
  };

  struct Motor {
    double position = 0.0;
    std::shared_ptr<const Motion> motion;
    std::size_t column = 0;
    bool released = false;
  };

  void _freeze(std::size_t motor, double now);

  std::vector<Motor> motorStates;
};

}  // namespace tavsim

#endif
