// Memory before and after 100,000 calls, each taken once the logger has caught up.
#include <benchmark/benchmark.h>

#include "LogWatch.h"
#include "ProcessMeter.h"
#include "Registration.h"

namespace bench {

namespace {

constexpr int kWarmUpCalls = 1000;
constexpr int kCalls = 100000;

bool Calls(int count) {
  double angle = 0;
  for (int i = 0; i < count; ++i) {
    if (Pool::RobotAt(0).get_angles(1, angle) != 0) {
      return false;
    }
  }
  return true;
}

double Growth(std::size_t before, std::size_t after) {
  return static_cast<double>(after) - static_cast<double>(before);
}

void Memory(benchmark::State& state) {
  Calls(kWarmUpCalls);
  LogWatch::Settled();
  const std::size_t heap = ProcessMeter::HeapInUse();
  const std::size_t resident = ProcessMeter::ResidentBytes();
  for (auto _ : state) {
    if (!Calls(kCalls)) {
      state.SkipWithError("get_angles failed");
    }
  }
  LogWatch::Settled();
  state.counters["heap_growth_bytes"] = Growth(heap, ProcessMeter::HeapInUse());
  state.counters["rss_growth_bytes"] = Growth(resident, ProcessMeter::ResidentBytes());
  state.counters["calls"] = kCalls;
}

BENCHMARK(Memory)->Name("memory")->Apply(OnPool<1, 1>)->Iterations(1);

}  // namespace

}  // namespace bench
