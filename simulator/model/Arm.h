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

  std::size_t motorCount() const { return motors_.size(); }

  double position(std::size_t motor, double now) const;
  double velocity(std::size_t motor, double now) const;
  double acceleration(std::size_t motor, double now) const;
  JointVector positions(const std::vector<std::size_t>& motors, double now) const;
  bool moving(std::size_t motor, double now) const;
  // When the motor comes to rest if nothing intervenes (now for a motor at rest).
  double restTime(std::size_t motor, double now) const;
  bool released(std::size_t motor) const { return motors_[motor].released; }

  // Starts a motion whose trajectory columns drive `motors` in order. Motors taken from a
  // running motion leave it where they are; the rest of that motion carries on.
  void start(std::shared_ptr<const Trajectory> trajectory, const std::vector<std::size_t>& motors,
             double now);
  // Stops every running motion that drives one of `motors`, freezing all its motors where
  // they are; returns the motors that were moving.
  std::vector<std::size_t> halt(const std::vector<std::size_t>& motors, double now);
  void hold(std::size_t motor) { motors_[motor].released = false; }
  void release(std::size_t motor) { motors_[motor].released = true; }
  // Forgets the motions that have ended, keeping their final positions.
  void settle(double now);

private:
  struct Motion {
    std::shared_ptr<const Trajectory> trajectory;
    double start = 0.0;

    double end() const { return start + trajectory->duration(); }
  };

  struct Motor {
    double position = 0.0;
    std::shared_ptr<const Motion> motion;
    std::size_t column = 0;
    bool released = false;
  };

  void freeze(std::size_t motor, double now);

  std::vector<Motor> motors_;
};

}  // namespace tavsim

#endif
