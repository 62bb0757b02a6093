// Recording the arm's state: the monitor at 100 Hz reading angles, velocities and currents of
// six motors into a CSV file for 10 s (TAVBENCH_RECORD_SECONDS sets another length), with
// the arm moving. The file's size, scaled to an hour, is what a shift of recording costs.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>

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
  for (auto _ : state) {
    // Every joint on its way, so that the values have their usual width.
    const int ids[] = {1, 2, 3, 4, 5, 6};
    const double targets[] = {120.0, -60.0, 60.0, -120.0, -30.0, 170.0};
    robot->Use([&](Robot& arm) {
      return arm.move_to_angles(6, ids, targets, 20.0f, 50.0f, Relative_Mode::Absolute);
    });
    monitor.StartRecording(path);
    monitor.Start();
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    monitor.Stop();
    monitor.StopRecording();
  }
  const double bytes = static_cast<double>(std::filesystem::file_size(path));
  std::filesystem::remove(path);
  const auto stats = monitor.Stats();
  state.counters["seconds"] = seconds;
  state.counters["rows"] = static_cast<double>(stats.recordedRows);
  state.counters["bytes"] = bytes;
  state.counters["bytes_per_hour"] = bytes / seconds * 3600.0;
  state.counters["missed_cycles"] = static_cast<double>(stats.missedCycles);
}

BENCHMARK(RecordState)->Name("recording")->Iterations(1)->UseRealTime();

}  // namespace

}  // namespace bench
