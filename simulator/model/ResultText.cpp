#include "model/ResultText.h"

#include <cstdio>

namespace tavsim {

namespace {

// Prints an exact zero without a sign, however it was computed.
double withoutNegativeZero(double value) {
  return value == 0.0 ? 0.0 : value;
}

template <typename T, typename Format>
std::string bracketed(const std::vector<T>& values, Format format) {
  std::string text = "[";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) {
      text += ',';
    }
    text += format(values[i]);
  }
  return text + "]";
}

std::string fixed(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.6f", withoutNegativeZero(value));
  return buffer;
}

std::string general(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.9g", withoutNegativeZero(value));
  return buffer;
}

}  // namespace

std::string fixedList(const std::vector<double>& values) {
  return bracketed(values, fixed);
}

std::string integerList(const std::vector<int>& values) {
  return bracketed(values, [](int value) { return std::to_string(value); });
}

std::string poseList(const Pose& pose) {
  return bracketed(std::vector<double>{pose.x, pose.y, pose.z, pose.roll, pose.pitch, pose.yaw},
                   general);
}

std::string stateText(int code) {
  return std::to_string(code);
}

}  // namespace tavsim
