#ifndef TAVDRIVER_ANGLEUNITS_H
#define TAVDRIVER_ANGLEUNITS_H

#include <vector>

namespace tavdriver {

// The library speaks degrees, ROS radians; the driver converts at its edge, nowhere else.
constexpr double kPi = 3.14159265358979323846;

constexpr double Radians(double degrees) { return degrees * kPi / 180.0; }
constexpr double Degrees(double radians) { return radians * 180.0 / kPi; }

inline std::vector<double> Radians(const std::vector<double>& degrees) {
  std::vector<double> out;
  out.reserve(degrees.size());
  for (double value : degrees) {
    out.push_back(Radians(value));
  }
  return out;
}

inline std::vector<double> Degrees(const std::vector<double>& radians) {
  std::vector<double> out;
  out.reserve(radians.size());
  for (double value : radians) {
    out.push_back(Degrees(value));
  }
  return out;
}

}  // namespace tavdriver

#endif
