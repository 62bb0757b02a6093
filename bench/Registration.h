#ifndef TAVBENCH_REGISTRATION_H
#define TAVBENCH_REGISTRATION_H

#include <benchmark/benchmark.h>

#include <cstddef>

#include "Pool.h"

// How the benchmarks are set up, so that every file registers its own the same way.
namespace bench {

using Benchmark = benchmark::internal::Benchmark;

// Timed runs are repeated and reported by the median of the repetitions.
constexpr int kRepetitions = 3;

template <std::size_t Robots, std::size_t Simulators>
void OpenPool(const benchmark::State& /*state*/) {
  Pool::Open(Robots, Simulators);
}

inline void ClosePool(const benchmark::State& /*state*/) { Pool::Close(); }

// Runs against `Robots` Robots on `Simulators` simulators that live for this benchmark only;
// wall-clock time, since the callers mostly wait.
template <std::size_t Robots, std::size_t Simulators>
void OnPool(Benchmark* benchmark) {
  benchmark->Setup(OpenPool<Robots, Simulators>)->Teardown(ClosePool)->UseRealTime();
}

// Repeated timed runs of at least `seconds` each, after a short warm-up.
inline void Repeated(Benchmark* benchmark, double seconds) {
  benchmark->MinTime(seconds)
      ->MinWarmUpTime(0.2)
      ->Repetitions(kRepetitions)
      ->ReportAggregatesOnly();
}

}  // namespace bench

#endif
