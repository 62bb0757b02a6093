#ifndef TAVSIM_MODEL_TRAJECTORY_H
#define TAVSIM_MODEL_TRAJECTORY_H

#include <cstddef>
#include <memory>
#include <vector>

#include "model/TrapezoidProfile.h"

namespace tavsim {

using JointVector = std::vector<double>;

// Where a group of joints is, how fast it moves (deg/s) and how long each joint needs to come
// to rest at the acceleration of the move driving it.
struct JointState {
  JointVector position;
  JointVector velocity;
  JointVector stoppingTime;

  bool Moving() const;
};

// Positions of a group of joints (degrees) as a function of the time since the motion began.
// Before the start and after the end the trajectory rests at its first and last positions.
class Trajectory {
public:
  virtual ~Trajectory() = default;
  virtual double Duration() const = 0;
  virtual JointVector PositionAt(double t) const = 0;
  // Degrees per second; a central difference of positionAt unless a subclass knows better.
  virtual JointVector VelocityAt(double t) const;
  // Degrees per second squared: a central difference of velocityAt.
  JointVector AccelerationAt(double t) const;
  // Seconds each joint needs to brake to rest from t at the acceleration of this motion.
  virtual JointVector StoppingTimeAt(double t) const = 0;
};

// Straight joint-space move with all joints synchronised: the joint with the longest way
// follows a trapezoid under the given limits and the others scale along with it. It may start
// moving along the line at `initialRate` (the leading joint's deg/s, positive towards `to`).
class JointRamp final : public Trajectory {
public:
  JointRamp(JointVector start, JointVector to, double velocity, double acceleration,
            double initialRate = 0.0);
  double Duration() const override { return profile.Duration(); }
  JointVector PositionAt(double t) const override;
  JointVector VelocityAt(double t) const override;
  JointVector StoppingTimeAt(double t) const override;

private:
  JointVector from;
  JointVector delta;
  double length;
  TrapezoidProfile profile;
};

// Standing still, for the pause at a path's stop points.
class Dwell final : public Trajectory {
public:
  Dwell(JointVector at, double seconds);
  double Duration() const override { return seconds; }
  JointVector PositionAt(double) const override { return at; }
  JointVector VelocityAt(double) const override { return JointVector(at.size(), 0.0); }
  JointVector StoppingTimeAt(double) const override { return JointVector(at.size(), 0.0); }

private:
  JointVector at;
  double seconds;
};

// Each joint slows down uniformly from its speed to rest within its stopping time.
class Brake final : public Trajectory {
public:
  explicit Brake(JointState start);
  double Duration() const override { return duration; }
  JointVector PositionAt(double t) const override;
  JointVector VelocityAt(double t) const override;
  JointVector StoppingTimeAt(double t) const override;

private:
  JointState from;
  double duration = 0.0;
};

// Joint positions sampled at a fixed step, linearly interpolated in between; `timing` is the
// tool's speed along the way, which sets how long the joints take to brake.
class SampledTrajectory final : public Trajectory {
public:
  // At least one sample; step > 0.
  SampledTrajectory(double step, std::vector<JointVector> samples, TrapezoidProfile timing);
  double Duration() const override;
  JointVector PositionAt(double t) const override;
  JointVector StoppingTimeAt(double t) const override;

private:
  double step;
  std::vector<JointVector> samples;
  TrapezoidProfile timing;
};

// Trajectories run one after another; each starts where the previous one ended.
class TrajectoryChain final : public Trajectory {
public:
  explicit TrajectoryChain(std::vector<std::unique_ptr<Trajectory>> pieces);
  double Duration() const override { return duration; }
  JointVector PositionAt(double t) const override;
  JointVector VelocityAt(double t) const override;
  JointVector StoppingTimeAt(double t) const override;

private:
  // The part running at t and t relative to its start.
  const Trajectory& _partAt(double t, double& local) const;

  std::vector<std::unique_ptr<Trajectory>> parts;
  std::vector<double> starts;
  double duration = 0.0;
};

}  // namespace tavsim

#endif
