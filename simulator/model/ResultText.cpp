#include "model/ResultText.h"

#include <cstdio>

namespace tavsim {

namespace {

// Prints an exact zero without a sign, however it was computed.
double WithoutNegativeZero(double value) { return value == 0.0 ? 0.0 : value; }

template <typename T, typename Format>
std::string Bracketed(const std::vector<T>& values, Format format) {
  std::string text = "[";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) {
      text += ',';
    }
    text += format(values[i]);
  }
  return text + "]";
}

std::string Fixed(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.6f", WithoutNegativeZero(value));
  return buffer;
}

std::string General(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.9g", WithoutNegativeZero(value));
  return buffer;
}

}  // namespace

std::string FixedList(const std::vector<double>& values) { return Bracketed(values, Fixed); }

std::string IntegerList(const std::vector<int>& values) {
  return Bracketed(values, [](int value) { return std::to_string(value); });
}

std::string PoseList(const Pose& pose) {
  return Bracketed(std::vector<double>{pose.x, pose.y, pose.z, pose.roll, pose.pitch, pose.yaw},
                   General);
}

std::string StateText(int code) { return std::to_string(code); }

}  // namespace tavsim
