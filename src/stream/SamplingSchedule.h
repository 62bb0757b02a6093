#ifndef TAVCLIENT_STREAM_SAMPLINGSCHEDULE_H
#define TAVCLIENT_STREAM_SAMPLINGSCHEDULE_H

#include <chrono>
#include <cstdint>

namespace tavclient {

// The slots of a fixed-rate loop on the steady clock. A cycle that ends after the next slot
// has passed skips every slot already gone: late cycles are counted, never run in a burst.
class SamplingSchedule {
public:
  using Clock = std::chrono::steady_clock;

  // The first slot is `start`; period > 0.
  SamplingSchedule(Clock::time_point start, Clock::duration period);

  Clock::time_point Next() const { return next; }
  Clock::duration Period() const { return period; }
  // Moves to the first slot after the one just run that lies after `now`; returns how many
  // slots were skipped on the way.
  std::uint64_t Advance(Clock::time_point now);

private:
  Clock::time_point next;
  Clock::duration period;
};

}  // namespace tavclient

#endif
