#ifndef TAVCLIENT_TRAJECTORY_JOINTSPLINE_H
#define TAVCLIENT_TRAJECTORY_JOINTSPLINE_H

#include <cstddef>
#include <vector>

namespace tavclient {

// Joint positions through knots in time, one cubic Hermite piece per interval. A knot without
// velocities gets those that make the accelerations continuous (a clamped cubic spline); the
// first and last knots without velocities get zero. Before the first knot and after the last
// the joints stand at those knots.
class JointSpline {
public:
  // `times` strictly increasing, at least one; `positions` one row per knot, every row as long;
  // `velocities` one row per knot, each empty (chosen) or as long as the positions.
  JointSpline(std::vector<double> times, std::vector<std::vector<double>> positions,
              const std::vector<std::vector<double>>& velocities);

  std::size_t Joints() const { return positions.front().size(); }
  double StartTime() const { return times.front(); }
  double EndTime() const { return times.back(); }
  const std::vector<double>& EndPositions() const { return positions.back(); }

  // Position and velocity of every joint at `t`.
  void Evaluate(double t, std::vector<double>& position, std::vector<double>& velocity) const;

  // The largest speed or acceleration (by magnitude) of one joint and when it occurs.
  struct Peak {
    double value = 0.0;
    double time = 0.0;
  };
  Peak PeakVelocity(std::size_t joint) const;
  Peak PeakAcceleration(std::size_t joint) const;

private:
  // q(tau) = a + b tau + c tau^2 + d tau^3 over one interval, tau from its start.
  struct Cubic {
    double a, b, c, d;
  };
  Cubic _piece(std::size_t interval, std::size_t joint) const;
  void _chooseVelocities(std::size_t joint, const std::vector<bool>& given);

  std::vector<double> times;
  std::vector<std::vector<double>> positions;   // [knot][joint]
  std::vector<std::vector<double>> velocities;  // [knot][joint]
};

}  // namespace tavclient

#endif
