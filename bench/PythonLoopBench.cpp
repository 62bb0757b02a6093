// The same tight get_angles loop as the C++ one, written in Python against the tavclient module:
// the script times itself, without the interpreter's start.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "Registration.h"

namespace bench {

namespace {

void PythonLoop(benchmark::State& state) {
#ifdef TAVBENCH_PYTHON
  const std::string command = std::string("PYTHONPATH='") + TAVBENCH_PYTHON_MODULE_DIR + "' '" +
                              TAVBENCH_PYTHON + "' '" + TAVBENCH_PYTHON_SCRIPT + "' 1";
  for (auto _ : state) {
    std::unique_ptr<FILE, int (*)(FILE*)> script(::popen(command.c_str(), "r"), ::pclose);
    double callsPerSecond = 0;
    if (!script || std::fscanf(script.get(), "%lf", &callsPerSecond) != 1) {
      state.SkipWithError("the Python loop printed no figure");
      return;
    }
    state.counters["calls_per_second"] = callsPerSecond;
  }
#else
  state.SkipWithError("the Python module was not built");
#endif
}

BENCHMARK(PythonLoop)
    ->Name("python get_angles")
    ->Iterations(1)
    ->Repetitions(kRepetitions)
    ->ReportAggregatesOnly()
    ->UseRealTime();

}  // namespace

}  // namespace bench
