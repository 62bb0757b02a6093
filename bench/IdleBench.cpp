// CPU that a logged-in Robot burns while nothing happens, and while a call waits for a reply
// that the simulator holds back.
#include <benchmark/benchmark.h>

#include <chrono>
#include <thread>

#include "ProcessMeter.h"
#include "Registration.h"

namespace bench {

namespace {

// Longer than the heartbeat period, so one beat falls inside.
constexpr std::chrono::seconds kIdleWindow{10};
constexpr std::chrono::seconds kReplyDelay{2};

// Sets "core_share", CPU seconds per wall-clock second, over what `wait` does.
template <typename Wait>
void MeasureCpu(benchmark::State& state, Wait wait) {
  for (auto _ : state) {
    const double cpuBefore = ProcessMeter::CpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    if (wait() != 0) {
      state.SkipWithError("the call failed");
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    state.counters["core_share"] = (ProcessMeter::CpuSeconds() - cpuBefore) / wall.count();
  }
}

void Idle(benchmark::State& state) {
  MeasureCpu(state, [] {
    std::this_thread::sleep_for(kIdleWindow);
    return 0;
  });
}

void WaitingForReply(benchmark::State& state) {
  Pool::SimulatorAt(0).Faults().Add(tavsim::Fault::DelayReply("get_angles", kReplyDelay));
  double angle = 0;
  MeasureCpu(state, [&] { return Pool::RobotAt(0).get_angles(1, angle); });
}

BENCHMARK(Idle)->Name("idle")->Apply(OnPool<1, 1>)->Iterations(1);
BENCHMARK(WaitingForReply)->Name("waiting")->Apply(OnPool<1, 1>)->Iterations(1);

}  // namespace

}  // namespace bench
