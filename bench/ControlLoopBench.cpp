// A control loop: one get_angles per 1 ms slot on one Robot for a minute (TAVBENCH_LOOP_SECONDS
// sets another length). The tail of its round trips and the slots it missed are what a loop
// closed over the arm feels; a mean would hide both. The loop runs at the normal priority, then
// with the whole program at a real-time one, then with no call at all: what the machine alone
// takes from any loop paced by a sleep.
#include <benchmark/benchmark.h>
#include <pthread.h>
#include <sched.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "Latency.h"
#include "Registration.h"

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kSlot = std::chrono::milliseconds(1);

// Below the kernel's threaded interrupt handlers (50), so the program never holds up the
// interrupts it waits for; any SCHED_FIFO priority is above every normal thread.
constexpr int kLoopPriority = 20;

std::chrono::duration<double> LoopLength() {
  const char* text = std::getenv("TAVBENCH_LOOP_SECONDS");
  return std::chrono::duration<double>(text != nullptr ? std::atof(text) : 60.0);
}

// A slot is missed when its call ends after it, and so is every slot that call ran across.
// Slots that had ended before the loop even woke were lost to the machine (the thread waited
// for a core), not to the call, and are counted apart.
template <typename Call>
void RunLoop(benchmark::State& state, Call&& call) {
  const auto length = std::chrono::duration_cast<Clock::duration>(LoopLength());
  Latency latency(state);
  long lostWaking = 0;
  long lostInCall = 0;
  for (auto _ : state) {
    const auto end = Clock::now() + length;
    for (auto slot = Clock::now(); slot < end;) {
      std::this_thread::sleep_until(slot);
      const auto woke = Clock::now();
      latency.Time(call);
      const auto now = Clock::now();
      for (slot += kSlot; slot <= now; slot += kSlot) {
        ++(slot <= woke ? lostWaking : lostInCall);
      }
    }
  }
  latency.Report();
  state.counters["seconds"] = std::chrono::duration<double>(length).count();
  state.counters["slots"] = static_cast<double>(length / kSlot);
  state.counters["missed_slots"] = static_cast<double>(lostWaking + lostInCall);
  state.counters["missed_waking"] = static_cast<double>(lostWaking);
}

bool SetPolicy(int policy, int priority) {
  sched_param parameters{};
  parameters.sched_priority = priority;
  return pthread_setschedparam(pthread_self(), policy, &parameters) == 0;
}

// The real-time row runs the whole program at a real-time priority, as `chrt -f` would start a
// control program: the loop, the library's threads and the simulator's (which stands in for a
// controller that has cores of its own) all inherit it from the thread that opens the pool.
bool realTimeRefused = false;

void OpenRealTimePool(const benchmark::State& state) {
  realTimeRefused = !SetPolicy(SCHED_FIFO, kLoopPriority);
  OpenPool<1, 1>(state);
}

void CloseRealTimePool(const benchmark::State& state) {
  ClosePool(state);
  SetPolicy(SCHED_OTHER, 0);
}

int GetAngle() {
  double angle = 0;
  return Pool::RobotAt(0).get_angles(1, angle);
}

void ControlLoop(benchmark::State& state) { RunLoop(state, GetAngle); }

// The loop with nothing to do: the slots this machine takes from any 1 kHz loop.
void IdleLoop(benchmark::State& state) {
  RunLoop(state, [] { return 0; });
}

void RealTimeControlLoop(benchmark::State& state) {
  if (realTimeRefused) {
    state.SkipWithError("the process may not take a real-time priority (CAP_SYS_NICE)");
    return;
  }
  RunLoop(state, GetAngle);
}

BENCHMARK(IdleLoop)->Name("control loop idle")->UseRealTime()->Iterations(1);
BENCHMARK(ControlLoop)->Name("control loop")->Apply(OnPool<1, 1>)->Iterations(1);
BENCHMARK(RealTimeControlLoop)
    ->Name("control loop real-time")
    ->Setup(OpenRealTimePool)
    ->Teardown(CloseRealTimePool)
    ->UseRealTime()
    ->Iterations(1);

}  // namespace

}  // namespace bench
