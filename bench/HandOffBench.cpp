// Two hand-offs between threads, as a call makes them: the caller wakes the Sender through a
// condition variable, and the Receiver wakes the caller. No socket, no text.
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <mutex>
#include <thread>

#include "Latency.h"
#include "Registration.h"

namespace bench {

namespace {

void HandOff(benchmark::State& state) {
  std::mutex mutex;
  std::condition_variable changed;
  bool peersTurn = false;
  bool stopping = false;
  std::thread peer([&] {
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
      changed.wait(lock, [&] { return peersTurn || stopping; });
      if (stopping) {
        return;
      }
      peersTurn = false;
      changed.notify_all();
    }
  });
  Latency latency(state);
  for (auto _ : state) {
    latency.Time([&] {
      std::unique_lock<std::mutex> lock(mutex);
      peersTurn = true;
      changed.notify_all();
      changed.wait(lock, [&] { return !peersTurn; });
      return 0;
    });
  }
  {
    const std::lock_guard<std::mutex> lock(mutex);
    stopping = true;
  }
  changed.notify_all();
  peer.join();
  latency.Report();
}

BENCHMARK(HandOff)->Name("hand-off")->UseRealTime()->Apply([](Benchmark* b) { Repeated(b, 1.0); });

}  // namespace

}  // namespace bench
