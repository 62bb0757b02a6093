#ifndef TAVDRIVER_ANGLEUNITS_H
#define TAVDRIVER_ANGLEUNITS_H

#include <vector>

namespace tavdriver {

// The library speaks degrees, ROS radians; the driver converts at its edge, nowhere else.
constexpr double kPi = 3.14159265358979323846;

constexpr double Radians(double degrees) { return degrees * kPi / 180.0; }
constexpr double Degrees(double radians) { return radians * 180.0 / kPi; }

template <typename Convert>
std::vector<double> ConvertEach(const std::vector<double>& values, Convert convert) {
  std::vector<double> out;
  out.reserve(values.size());
  for (double value : values) {
    out.push_back(convert(value));
  }
  return out;
}

inline std::vector<double> Radians(const std::vector<double>& degrees) {
  return ConvertEach(degrees, [](double value) { return Radians(value); });
}
inline std::vector<double> Degrees(const std::vector<double>& radians) {
  return ConvertEach(radians, [](double value) { return Degrees(value); });
}

}  // namespace tavdriver

#endif
