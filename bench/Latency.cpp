#include "Latency.h"

#include <algorithm>
#include <string>

namespace bench {

namespace {

double Microseconds(std::chrono::steady_clock::duration duration) {
  return std::chrono::duration<double, std::micro>(duration).count();
}

}  // namespace

Latency::Latency(benchmark::State& runState) : state(runState) {
  samples.reserve(static_cast<std::size_t>(state.max_iterations));
}

void Latency::Fail(int code) {
  state.SkipWithError(("call failed with " + std::to_string(code)).c_str());
}

void Latency::Report() {
  if (samples.empty()) {
    return;
  }
  std::sort(samples.begin(), samples.end());
  const std::size_t last = samples.size() - 1;
  state.counters["median_us"] = Microseconds(samples[last / 2]);
  state.counters["p99_us"] = Microseconds(samples[last * 99 / 100]);
  state.counters["p999_us"] = Microseconds(samples[last * 999 / 1000]);
  state.counters["max_us"] = Microseconds(samples[last]);
}

}  // namespace bench
