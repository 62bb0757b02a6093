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

  double duration() const { return 2.0 * rampTime_ + cruiseTime_; }
  double position(double t) const;
  double velocity(double t) const;

private:
  double distance_;
  double acceleration_;
  double peakVelocity_;
  double rampTime_;
  double cruiseTime_;
};

}  // namespace tavsim

#endif
