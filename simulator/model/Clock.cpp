#include "model/Clock.h"

namespace tavsim {

SteadyClock::SteadyClock() : origin(std::chrono::steady_clock::now()) {}

double SteadyClock::Now() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - origin).count();
}

double ManualClock::Now() const { return elapsed.load(); }

void ManualClock::Advance(double seconds) {
  double current = elapsed.load();
  while (!elapsed.compare_exchange_weak(current, current + seconds)) {
  }
}

}  // namespace tavsim
