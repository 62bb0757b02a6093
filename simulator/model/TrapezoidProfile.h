#ifndef TAVSIM_MODEL_TRAPEZOIDPROFILE_H
#define TAVSIM_MODEL_TRAPEZOIDPROFILE_H

namespace tavsim {

// Rest-to-rest motion over a distance with limited speed and acceleration: accelerate,
// cruise, decelerate. When the distance is too short to reach the speed limit the cruise
// vanishes and the profile is triangular. Times are seconds from the start; outside
// [0, duration] the profile rests at its ends.
class TrapezoidProfile {
public:
  // distance >= 0; maxVelocity and acceleration > 0 (checked by the caller).
  TrapezoidProfile(double distance, double maxVelocity, double acceleration);

  double Duration() const { return 2.0 * rampTime + cruiseTime; }
  double Position(double t) const;
  double Velocity(double t) const;

private:
  double distance;
  double acceleration;
  double peakVelocity;
  double rampTime;
  double cruiseTime;
};

}  // namespace tavsim

#endif
