// Following a trajectory on the simulator: a 6-joint path of 5 s through 50 points, the state
// monitor at 100 Hz. The figures are how far the arm strays from the path, how long it takes
// against the plan, and how far from the last point it stops.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include <tavclient/TrajectoryFollower.h>

#include "Registration.h"
#include "server/SimulatorServer.h"

namespace bench {

namespace {

constexpr double kSeconds = 5.0;
constexpr int kPoints = 50;
const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};

// Each joint leaves the simulator's start angle, swings through two humps and settles
// elsewhere, at rest at both ends.
tavclient::JointTrajectory Path(const std::vector<double>& start) {
  const double reach[] = {60.0, 20.0, -40.0, 45.0, 35.0, 90.0};
  tavclient::JointTrajectory trajectory;
  trajectory.motorIds = {1, 2, 3, 4, 5, 6};
  for (int k = 1; k <= kPoints; ++k) {
    const double u = static_cast<double>(k) / kPoints;
    tavclient::TrajectoryPoint point;
    point.timeFromStart = u * kSeconds;
    const double settle = (1.0 - std::cos(M_PI * u)) / 2.0;
    const double humps = std::sin(M_PI * u) * std::sin(2.0 * M_PI * u) * std::sin(M_PI * u);
    for (std::size_t j = 0; j < start.size(); ++j) {
      point.positions.push_back(start[j] + reach[j] * (settle + 0.4 * humps));
    }
    trajectory.points.push_back(point);
  }
  return trajectory;
}

void FollowTrajectory(benchmark::State& state) {
  tavsim::SimulatorServer simulator;
  auto robot = std::make_shared<tavclient::SharedRobot>();
  if (robot->Connect("127.0.0.1", simulator.Port(), "arm", kChannel, Setup_Mode::Virtual) != 0) {
    state.SkipWithError("no session with the simulator");
    return;
  }
  auto monitor = std::make_shared<tavclient::StateMonitor>(robot);
  monitor->Start();
  // The follower starts from the monitor's newest sample.
  monitor->WaitNext(std::chrono::seconds(1));
  tavclient::TrajectoryFollower follower(robot, monitor);
  double worstError = 0.0;
  double worstLate = -1e9;
  double worstFinal = 0.0;
  double duration = 0.0;
  for (auto _ : state) {
    std::vector<double> start;
    robot->Use([&](Robot& arm) { return arm.get_angles(start); });
    auto trajectory = Path(start);
    const tavclient::FollowResult result = follower.Follow(trajectory);
    if (result.outcome != tavclient::FollowOutcome::Succeeded) {
      state.SkipWithError(("the following failed: " + result.message).c_str());
      return;
    }
    worstError = std::max(worstError, result.maxError);
    worstLate = std::max(worstLate, result.duration - result.plannedDuration);
    duration = std::max(duration, result.duration);
    for (double error : result.finalError) {
      worstFinal = std::max(worstFinal, std::abs(error));
    }
    // Back to the start for the next run.
    for (auto& point : trajectory.points) {
      point.timeFromStart = kSeconds - point.timeFromStart;
    }
    std::reverse(trajectory.points.begin(), trajectory.points.end());
    trajectory.points.erase(trajectory.points.begin());
    trajectory.points.push_back({kSeconds, start, {}});
    follower.Follow(trajectory);
  }
  state.counters["max_error_deg"] = worstError;
  state.counters["late_s"] = worstLate;
  state.counters["duration_s"] = duration;
  state.counters["planned_s"] = kSeconds;
  state.counters["final_error_deg"] = worstFinal;
  state.counters["runs"] = static_cast<double>(state.iterations());
}

BENCHMARK(FollowTrajectory)->Name("follow trajectory")->Iterations(3)->UseRealTime();

}  // namespace

}  // namespace bench
