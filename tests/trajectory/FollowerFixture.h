#ifndef TAVTEST_TRAJECTORY_FOLLOWERFIXTURE_H
#define TAVTEST_TRAJECTORY_FOLLOWERFIXTURE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "JointTrajectory.h"
#include "SharedRobot.h"
#include "StateMonitor.h"
#include "TrajectoryFollower.h"
#include "server/SimulatorServer.h"
#include "stream/MonitorFixture.h"
#include "support/SampleWaiter.h"

namespace tavtest {

// The simulator's arm at rest where it starts, and how far a smooth test path takes each joint.
inline const std::vector<double> kStart{0.0, -90.0, 90.0, -90.0, -90.0, 0.0};
inline const std::vector<double> kReach{40.0, 15.0, -30.0, 30.0, 25.0, 60.0};

// A smooth path of the six joints from the start over `seconds` through `count` points (the
// last at `seconds`), at rest at both ends; velocities left to the library.
inline tavclient::JointTrajectory SmoothPath(double seconds, int count, double scale = 1.0) {
  tavclient::JointTrajectory trajectory;
  trajectory.motorIds = {1, 2, 3, 4, 5, 6};
  for (int k = 1; k <= count; ++k) {
    const double u = static_cast<double>(k) / count;
    tavclient::TrajectoryPoint point;
    point.timeFromStart = u * seconds;
    for (std::size_t j = 0; j < kStart.size(); ++j) {
      const double ramp = u - std::sin(2.0 * M_PI * u) / (2.0 * M_PI);
      const double swing = std::pow(std::sin(M_PI * u), 2) * std::sin(2.0 * M_PI * u);
      point.positions.push_back(kStart[j] + scale * kReach[j] * (ramp + 0.3 * swing));
    }
    trajectory.points.push_back(point);
  }
  return trajectory;
}

// A simulator, a robot connected to it, a running monitor of angles and velocities, and a
// follower.
class FollowerFixture : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_EQ(
        robot->Connect("127.0.0.1", simulator.Port(), "arm", kMonitorChannel, Setup_Mode::Virtual),
        0);
    ASSERT_EQ(monitor->Start(), 0);
    FreshSample();
  }

  static tavclient::MonitorOptions MonitorOptions() {
    tavclient::MonitorOptions options;
    options.rateHz = 200.0;
    return options;
  }

  // Waits for a sample taken after this call, with fresh angles.
  void FreshSample() {
    tavtest::SampleWaiter waiter(*monitor);
    ASSERT_TRUE(waiter.WaitFor(Fresh));
  }

  // How many commands of `name` the simulator has been sent.
  int CommandsSent(const std::string& name) {
    std::lock_guard<std::mutex> lock(logMutex);
    return static_cast<int>(std::count_if(
        commandLog.begin(), commandLog.end(),
        [&](const auto& line) { return line.find(" " + name + " #") != std::string::npos; }));
  }

  std::vector<double> Angles() {
    std::vector<double> angles;
    EXPECT_EQ(robot->Use([&](Robot& arm) { return arm.get_angles(angles); }), 0);
    return angles;
  }

  tavsim::ServerOptions LoggedOptions() {
    tavsim::ServerOptions options;
    options.log = [this](const std::string& line) {
      std::lock_guard<std::mutex> lock(logMutex);
      commandLog.push_back(line);
    };
    return options;
  }

  std::mutex logMutex;
  std::vector<std::string> commandLog;
  tavsim::SimulatorServer simulator{LoggedOptions()};
  std::shared_ptr<tavclient::SharedRobot> robot = std::make_shared<tavclient::SharedRobot>();
  std::shared_ptr<tavclient::StateMonitor> monitor =
      std::make_shared<tavclient::StateMonitor>(robot, MonitorOptions());
  tavclient::TrajectoryFollower follower{robot, monitor};
};

}  // namespace tavtest

#endif
