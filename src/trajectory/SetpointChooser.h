#ifndef TAVCLIENT_TRAJECTORY_SETPOINTCHOOSER_H
#define TAVCLIENT_TRAJECTORY_SETPOINTCHOOSER_H

#include <cstddef>
#include <vector>

namespace tavclient {

// One joint's take-over move for one cycle.
struct Setpoint {
  double target = 0.0;        // degrees
  float velocity = 0.0f;      // degrees per second, > 0
  float acceleration = 0.0f;  // degrees per second squared, > 0
};

// Chooses each cycle's move for one joint so that the joint runs at the speed that brings it
// onto the path by the next cycle.
//
// A take-over move ramps from the joint's current speed to the move's speed limit with its
// acceleration, cruises, and brakes to rest at the target. So the speed limit is the speed
// wanted over the coming cycle (the path's own, plus a correction of half the error), and the
// target lies far enough ahead that braking would begin only after several cycles: the next
// cycle's move takes over long before. Near the path's end the target is the last point, where
// the move comes to rest by itself. Should set-points stop coming, the joint still stops within
// a few cycles' way.
class SetpointChooser {
public:
  // cycle > 0; the limits per joint, > 0.
  SetpointChooser(double cycle, std::vector<double> maxVelocity,
                  std::vector<double> maxAcceleration);

  // `desiredNow` and `desiredNext`: the path's position now and one cycle on; `position` and
  // `speed`: where the joint is estimated to be now and how fast it moves; `finishing`: the
  // path ends within the coming cycle, at `last`.
  Setpoint Choose(std::size_t joint, double desiredNow, double desiredNext, double position,
                  double speed, bool finishing, double last) const;

private:
  double cycle;
  std::vector<double> maxVelocity;
  std::vector<double> maxAcceleration;
};

}  // namespace tavclient

#endif
