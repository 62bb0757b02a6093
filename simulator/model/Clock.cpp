#include "model/Clock.h"

namespace tavsim {

SteadyClock::SteadyClock() : origin_(std::chrono::steady_clock::now()) {}

double SteadyClock::now() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - origin_).count();
}

double ManualClock::now() const {
  return seconds_.load();
}

void ManualClock::advance(double seconds) {
  double current = seconds_.load();
  while (!seconds_.compare_exchange_weak(current, current + seconds)) {
  }
}

}  // namespace tavsim
