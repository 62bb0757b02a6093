// A control loop: one get_angles per 1 ms slot on one Robot for a minute (TAVBENCH_LOOP_SECONDS
// sets another length). The tail of its round trips and the slots it missed are what a loop
// closed over the arm feels; a mean would hide both.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "Latency.h"
#include "Registration.h"

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kSlot = std::chrono::milliseconds(1);

std::chrono::duration<double> LoopLength() {
  const char* text = std::getenv("TAVBENCH_LOOP_SECONDS");
  return std::chrono::duration<double>(text != nullptr ? std::atof(text) : 60.0);
}

// A slot is missed when its call ends after it, and so is every slot that call ran across.
void ControlLoop(benchmark::State& state) {
  Robot& robot = Pool::RobotAt(0);
  const auto length = std::chrono::duration_cast<Clock::duration>(LoopLength());
  Latency latency(state);
  double angle = 0;
  long missed = 0;
  for (auto _ : state) {
    const auto end = Clock::now() + length;
    for (auto slot = Clock::now(); slot < end;) {
      std::this_thread::sleep_until(slot);
      latency.Time([&] { return robot.get_angles(1, angle); });
      const auto now = Clock::now();
      for (slot += kSlot; slot <= now; slot += kSlot) {
        ++missed;
      }
    }
  }
  latency.Report();
  state.counters["seconds"] = std::chrono::duration<double>(length).count();
  state.counters["slots"] = static_cast<double>(length / kSlot);
  state.counters["missed_slots"] = static_cast<double>(missed);
}

BENCHMARK(ControlLoop)->Name("control loop")->Apply(OnPool<1, 1>)->Iterations(1);

}  // namespace

}  // namespace bench
