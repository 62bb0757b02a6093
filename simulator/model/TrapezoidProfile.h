#ifndef TAVSIM_MODEL_TRAPEZOIDPROFILE_H
#define TAVSIM_MODEL_TRAPEZOIDPROFILE_H

#include <vector>

namespace tavsim {

// Motion over a signed distance that ends at rest, with limited speed and acceleration:
// accelerate (or slow down to the speed limit), cruise, decelerate. When the distance is too
// short to reach the speed limit the cruise vanishes and the profile is triangular. It may
// start moving: when that initial speed points away from the goal, or is too fast to stop in
// time, it brakes to rest first and then sets off towards the goal. Times are seconds from the
// start; after the duration the profile rests at its goal.
class TrapezoidProfile {
public:
  // maxVelocity and acceleration > 0 (checked by the caller).
  TrapezoidProfile(double goal, double maxVelocity, double maxAcceleration,
                   double startVelocity = 0.0);

  double Duration() const { return duration; }
  double Acceleration() const { return acceleration; }
  double Position(double t) const;
  double Velocity(double t) const;

private:
  // A stretch of constant acceleration.
  struct Phase {
    double start;
    double position;
    double velocity;
    double acceleration;
  };

  void _add(double seconds, double phaseAcceleration);
  const Phase& _phaseAt(double t) const;

  double distance;
  double acceleration;
  double initialVelocity;
  std::vector<Phase> phases;
  double duration = 0.0;
  double endPosition = 0.0;
  double endVelocity = 0.0;
};

}  // namespace tavsim

#endif
