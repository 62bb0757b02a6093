#include "stream/SamplingSchedule.h"

namespace tavclient {

SamplingSchedule::SamplingSchedule(Clock::time_point start, Clock::duration slot)
    : next(start), period(slot) {}

std::uint64_t SamplingSchedule::Advance(Clock::time_point now) {
  next += period;
  if (next > now) {
    return 0;
  }
  auto skipped = static_cast<std::uint64_t>((now - next) / period) + 1;
  next += period * static_cast<Clock::duration::rep>(skipped);
  return skipped;
}

}  // namespace tavclient
