#ifndef TAVSIM_MODEL_CLOCK_H
#define TAVSIM_MODEL_CLOCK_H

#include <atomic>
#include <chrono>

namespace tavsim {

// Time source of the simulated controller, in seconds from an arbitrary fixed origin. The arm
// is evaluated as a function of this time, so a manual clock makes every motion deterministic.
// Implementations must be safe to read from several threads.
class Clock {
public:
  virtual ~Clock() = default;
  virtual double Now() const = 0;
};

class SteadyClock final : public Clock {
public:
  SteadyClock();
  double Now() const override;

private:
  std::chrono::steady_clock::time_point origin;
};

// Stands still until advanced; for tests and for stepping the simulation by hand.
class ManualClock final : public Clock {
public:
  double Now() const override;
  void Advance(double seconds);

private:
  std::atomic<double> elapsed{0.0};
};

}  // namespace tavsim

#endif
