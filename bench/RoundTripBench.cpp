// One caller, one Robot, one simulator: the time of a command from call to return.
#include <benchmark/benchmark.h>

#include <vector>

#include "Latency.h"
#include "Registration.h"

namespace bench {

namespace {

template <typename Call>
void RoundTrip(benchmark::State& state, Call call) {
  Robot& robot = Pool::RobotAt(0);
  Latency latency(state);
  for (auto _ : state) {
    latency.Time([&] { return call(robot); });
  }
  latency.Report();
}

void GetAnglesOne(benchmark::State& state) {
  double angle = 0;
  RoundTrip(state, [&](Robot& robot) { return robot.get_angles(1, angle); });
}

void GetAnglesSix(benchmark::State& state) {
  std::vector<double> angles;
  RoundTrip(state, [&](Robot& robot) { return robot.get_angles(angles); });
}

// Alternates between two targets, so every call starts a real motion.
void MoveToAngles(benchmark::State& state) {
  bool far = false;
  RoundTrip(state, [&](Robot& robot) {
    far = !far;
    return robot.move_to_angles(1, far ? 20.0 : 10.0, 30.0f, 60.0f, Relative_Mode::Absolute);
  });
}

void Configure(Benchmark* benchmark) {
  OnPool<1, 1>(benchmark);
  Repeated(benchmark, 1.0);
}

BENCHMARK(GetAnglesOne)->Name("get_angles 1")->Apply(Configure);
BENCHMARK(GetAnglesSix)->Name("get_angles 6")->Apply(Configure);
BENCHMARK(MoveToAngles)->Name("move_to_angles")->Apply(Configure);

}  // namespace

}  // namespace bench
