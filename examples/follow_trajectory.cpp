// Follow a smooth 6-joint trajectory in time and report how closely the arm kept to it.
//   follow_trajectory               against a simulator started in this process
//   follow_trajectory HOST PORT     against the controller at HOST:PORT
#include <cmath>
#include <cstdio>
#include <memory>

#include <tavclient/TrajectoryFollower.h>

#include "ExampleTarget.h"

namespace {

constexpr double kSeconds = 4.0;  // the trajectory's length
constexpr int kPoints = 40;
constexpr double kTolerance = 0.5;  // degrees of tracking error this example accepts

// From where the joints stand, each turns by its own amount and back part of the way, at rest
// at both ends; velocities are left to the library.
tavclient::JointTrajectory SmoothTrajectory(const std::vector<double>& start) {
  const double turn[] = {50.0, 15.0, -30.0, 40.0, 30.0, 80.0};  // degrees
  tavclient::JointTrajectory trajectory;
  trajectory.motorIds = {1, 2, 3, 4, 5, 6};
  for (int k = 1; k <= kPoints; ++k) {
    const double u = static_cast<double>(k) / kPoints;
    tavclient::TrajectoryPoint point;
    point.timeFromStart = u * kSeconds;
    for (std::size_t j = 0; j < start.size(); ++j) {
      point.positions.push_back(start[j] + turn[j] * std::pow(std::sin(M_PI * u / 2.0), 2) *
                                               (1.0 - 0.5 * std::sin(M_PI * u)));
    }
    trajectory.points.push_back(point);
  }
  return trajectory;
}

}  // namespace

int main(int argc, char** argv) {
  const ExampleTarget target(argc, argv);
  auto robot = std::make_shared<tavclient::SharedRobot>();
  int code =
      robot->Connect(target.Host(), target.Port(), "arm", {"can0", "can", "canopen", 1, 500000},
                     target.Simulated() ? Setup_Mode::Virtual : Setup_Mode::Real);
  std::vector<double> start;
  if (code == 0) {
    code = robot->Use([&](Robot& arm) { return arm.get_angles(start); });
  }
  if (code != 0 || start.size() < 6) {
    std::printf("failed with code %d: %s\n", code, Robot::EventText(code));
    return 1;
  }
  start.resize(6);
  // The follower measures the tracking with a monitor of angles and velocities (100 Hz).
  auto monitor = std::make_shared<tavclient::StateMonitor>(robot);
  monitor->Start();
  monitor->WaitNext(std::chrono::seconds(1));
  tavclient::TrajectoryFollower follower(robot, monitor);
  const tavclient::FollowResult result = follower.Follow(SmoothTrajectory(start));
  if (result.outcome != tavclient::FollowOutcome::Succeeded) {
    std::printf("following failed: %s\n", result.message.c_str());
    return 1;
  }
  std::printf("max tracking error %.3f deg, duration %.3f s (planned %.3f s)\n", result.maxError,
              result.duration, result.plannedDuration);
  const bool onTime =
      std::abs(result.duration - result.plannedDuration) <= 0.02 * result.plannedDuration + 0.05;
  return result.maxError <= kTolerance && onTime ? 0 : 1;
}
