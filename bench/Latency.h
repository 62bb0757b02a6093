#ifndef TAVBENCH_LATENCY_H
#define TAVBENCH_LATENCY_H

#include <benchmark/benchmark.h>

#include <chrono>
#include <vector>

namespace bench {

// The duration of every call of one benchmark run, reported as the counters "median_us",
// "p99_us", "p999_us" and "max_us": a mean would hide the tail that a robot program waits on.
class Latency {
public:
  explicit Latency(benchmark::State& state);

  // Times `call`, which returns 0 on success; a failure ends the run with an error.
  template <typename Call>
  void Time(Call&& call) {
    const auto start = std::chrono::steady_clock::now();
    const int code = call();
    samples.push_back(std::chrono::steady_clock::now() - start);
    if (code != 0) {
      Fail(code);
    }
  }

  // Sets the counters; call once after the loop.
  void Report();

private:
  void Fail(int code);

  benchmark::State& state;
  std::vector<std::chrono::steady_clock::duration> samples;
};

}  // namespace bench

#endif
