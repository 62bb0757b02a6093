// Calls per second from several caller threads: on one shared Robot, or one Robot each.
#include <benchmark/benchmark.h>

#include "ProcessMeter.h"
#include "Registration.h"

namespace bench {

namespace {

// Caller thread i uses Robot i modulo the Robots open. The callers start and end their loops
// together, so the first one can take the CPU time the whole process spent per call, which
// bounds the calls per second that two cores allow.
void Calls(benchmark::State& state) {
  Robot& robot = Pool::RobotAt(static_cast<std::size_t>(state.thread_index()) % Pool::RobotCount());
  double angle = 0;
  const double cpuBefore = ProcessMeter::CpuSeconds();
  for (auto _ : state) {
    if (robot.get_angles(1, angle) != 0) {
      state.SkipWithError("get_angles failed");
    }
  }
  state.SetItemsProcessed(state.iterations());
  if (state.thread_index() == 0) {
    const auto calls = static_cast<double>(state.iterations() * state.threads());
    state.counters["cpu_us_per_call"] = (ProcessMeter::CpuSeconds() - cpuBefore) * 1e6 / calls;
  }
}

template <std::size_t Robots, std::size_t Simulators>
void Configure(Benchmark* benchmark) {
  OnPool<Robots, Simulators>(benchmark);
  Repeated(benchmark, 1.0);
}

BENCHMARK(Calls)->Name("one Robot")->Threads(1)->Threads(2)->Threads(4)->Apply(Configure<1, 1>);
BENCHMARK(Calls)->Name("4 Robots, one simulator")->Threads(4)->Apply(Configure<4, 1>);
BENCHMARK(Calls)->Name("4 Robots, 4 simulators")->Threads(4)->Apply(Configure<4, 4>);

}  // namespace

}  // namespace bench
