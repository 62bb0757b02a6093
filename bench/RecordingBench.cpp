// Recording the arm's state: the monitor at 100 Hz reading angles, velocities and currents of
// six motors into a CSV file for 10 s or more (TAVBENCH_RECORD_SECONDS sets another length;
// the last move ends after it), with the arm moving back and forth. The file's size, scaled to an
// hour, is what a shift of recording costs.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include <tavclient/StateMonitor.h>

#include "Registration.h"
#include "server/SimulatorServer.h"

namespace bench {

namespace {

const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};

double RecordSeconds() {
  const char* text = std::getenv("TAVBENCH_RECORD_SECONDS");
  return text != nullptr ? std::atof(text) : 10.0;
}

void RecordState(benchmark::State& state) {
  tavsim::SimulatorServer simulator;
  auto robot = std::make_shared<tavclient::SharedRobot>();
  if (robot->Connect("127.0.0.1", simulator.Port(), "arm", kChannel, Setup_Mode::Virtual) != 0) {
    state.SkipWithError("no session with the simulator");
    return;
  }
  tavclient::MonitorOptions options;
  options.rateHz = 100.0;
  options.fields = tavclient::StateField::Angles | tavclient::StateField::Velocities |
                   tavclient::StateField::Currents;
  tavclient::StateMonitor monitor(robot, options);
  const std::string path = (std::filesystem::temp_directory_path() /
                            ("tavbench-recording-" + std::to_string(::getpid()) + ".csv"))
                               .string();
  const double seconds = RecordSeconds();
  double elapsed = 0.0;
  for (auto _ : state) {
    monitor.StartRecording(path);
    monitor.Start();
    const auto begin = std::chrono::steady_clock::now();
    // Every joint back and forth all along, so that the values have their usual width.
    const int ids[] = {1, 2, 3, 4, 5, 6};
    const double there[] = {120.0, -60.0, 60.0, -120.0, -30.0, 170.0};
    const double back[] = {0.0, -90.0, 90.0, -90.0, -90.0, 0.0};
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (bool out = true; std::chrono::steady_clock::now() < end; out = !out) {
      robot->Use([&](Robot& arm) {
        arm.move_to_angles(6, ids, out ? there : back, 40.0f, 30.0f, Relative_Mode::Absolute);
        return arm.wait_for_motors(6, ids);
      });
    }
    monitor.Stop();
    monitor.StopRecording();
    elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }
  const double bytes = static_cast<double>(std::filesystem::file_size(path));
  std::filesystem::remove(path);
  const auto stats = monitor.Stats();
  state.counters["seconds"] = elapsed;
  state.counters["rows"] = static_cast<double>(stats.recordedRows);
  state.counters["bytes"] = bytes;
  // An hour of rows at the monitor's rate.
  state.counters["bytes_per_hour"] =
      bytes / static_cast<double>(stats.recordedRows) * options.rateHz * 3600.0;
  state.counters["missed_cycles"] = static_cast<double>(stats.missedCycles);
}

BENCHMARK(RecordState)->Name("recording")->Iterations(1)->UseRealTime();

}  // namespace

}  // namespace bench
