#ifndef TAVSIM_MODEL_TRAJECTORY_H
#define TAVSIM_MODEL_TRAJECTORY_H

#include <cstddef>
#include <memory>
#include <vector>

#include "model/TrapezoidProfile.h"

namespace tavsim {

using JointVector = std::vector<double>;

// Positions of a group of joints (degrees) as a function of the time since the motion began.
// Before the start and after the end the trajectory rests at its first and last positions.
class Trajectory {
public:
  virtual ~Trajectory() = default;
  virtual double duration() const = 0;
  virtual JointVector positionAt(double t) const = 0;
  // Degrees per second; a central difference of positionAt unless a subclass knows better.
  virtual JointVector velocityAt(double t) const;
  // Degrees per second squared: a central difference of velocityAt.
  JointVector accelerationAt(double t) const;
};

// Straight joint-space move with all joints synchronised: the joint with the longest way
// follows a trapezoid under the given limits and the others scale along with it.
class JointRamp final : public Trajectory {
public:
  JointRamp(JointVector from, JointVector to, double velocity, double acceleration);
  double duration() const override { return profile_.duration(); }
  JointVector positionAt(double t) const override;
  JointVector velocityAt(double t) const override;

private:
  JointVector from_;
  JointVector delta_;
  double length_;
  TrapezoidProfile profile_;
};

// Standing still, for the pause at a path's stop points.
class Dwell final : public Trajectory {
public:
  Dwell(JointVector at, double seconds);
  double duration() const override { return seconds_; }
  JointVector positionAt(double) const override { return at_; }
  JointVector velocityAt(double) const override { return JointVector(at_.size(), 0.0); }

private:
  JointVector at_;
  double seconds_;
};

// Joint positions sampled at a fixed step, linearly interpolated in between.
class SampledTrajectory final : public Trajectory {
public:
  // At least one sample; step > 0.
  SampledTrajectory(double step, std::vector<JointVector> samples);
  double duration() const override;
  JointVector positionAt(double t) const override;

private:
  double step_;
  std::vector<JointVector> samples_;
};

// Trajectories run one after another; each starts where the previous one ended.
class TrajectoryChain final : public Trajectory {
public:
  explicit TrajectoryChain(std::vector<std::unique_ptr<Trajectory>> parts);
  double duration() const override { return duration_; }
  JointVector positionAt(double t) const override;
  JointVector velocityAt(double t) const override;

private:
  // The part running at t and t relative to its start.
  const Trajectory& partAt(double t, double& local) const;

  std::vector<std::unique_ptr<Trajectory>> parts_;
  std::vector<double> starts_;
  double duration_ = 0.0;
};

}  // namespace tavsim

#endif
