#include "DriverFixture.h"

#include <signal.h>

namespace tavrostest {

void DriverTest::SetUp() {
  jointStates = std::make_unique<Recorder<sensor_msgs::JointState>>("/arm/joint_states");
  diagnostics = std::make_unique<Recorder<diagnostic_msgs::DiagnosticArray>>("/arm/diagnostics");
  action = std::make_unique<ActionClient>("/arm/follow_joint_trajectory");
}

void DriverTest::TearDown() {
  robot.RobotLogout();
  action.reset();
  if (driver) {
    driver->Signal(SIGINT);
    driver->WaitExit(std::chrono::seconds(10));
  }
  driver.reset();
  simulator.reset();
}

void DriverTest::StartSimulator(int port) {
  simulator = std::make_unique<tavtest::SimulatorProcess>(
      TAVSIM_PROGRAM, std::vector<std::string>{"--port", std::to_string(port), "--quiet"});
}

void DriverTest::StartDriver(int port, const std::vector<std::string>& options) {
  std::vector<std::string> command{TAVCLIENT_NODE_PROGRAM,
                                   "__ns:=/arm",
                                   "__name:=driver",
                                   "_robot_port:=" + std::to_string(port),
                                   std::string("_joint_prefix:=") + kPrefix,
                                   "_retry_period:=0.1"};
  command.insert(command.end(), options.begin(), options.end());
  driver = std::make_unique<ChildProcess>(command);
}

void DriverTest::ConnectRobot() {
  ASSERT_EQ(robot.RobotLogin("127.0.0.1", static_cast<short>(simulator->Port())), 0);
  ASSERT_EQ(robot.Setup("arm", {"can0", "can", "canopen", 1, 500000}, Setup_Mode::Virtual), 0);
}

void DriverTest::StartConnected() {
  StartSimulator();
  StartDriver(simulator->Port());
  ConnectRobot();
  ASSERT_TRUE(action->waitForActionServerToStart(ros::Duration(10)));
  ASSERT_TRUE(WaitConnected(true, std::chrono::seconds(10)));
}

Recorder<diagnostic_msgs::DiagnosticArray>::Pointer DriverTest::WaitConnected(
    bool connected, std::chrono::milliseconds wait) {
  const std::string wanted = connected ? "true" : "false";
  diagnostics->Clear();
  return diagnostics->WaitUntil(wait, [&](const diagnostic_msgs::DiagnosticArray& array) {
    for (const auto& status : array.status) {
      for (const auto& pair : status.values) {
        if (pair.key == "connected") {
          return pair.value == wanted;
        }
      }
    }
    return false;
  });
}

std::vector<std::string> DriverTest::JointNames(int count) {
  std::vector<std::string> names;
  for (int id = 1; id <= count; ++id) {
    names.push_back(std::string(kPrefix) + "joint_" + std::to_string(id));
  }
  return names;
}

Goal DriverTest::MakeGoal(const std::vector<std::pair<double, std::vector<double>>>& points) {
  Goal goal;
  goal.trajectory.joint_names = JointNames();
  for (const auto& [time, positions] : points) {
    trajectory_msgs::JointTrajectoryPoint point;
    point.time_from_start = ros::Duration(time);
    point.positions = positions;
    goal.trajectory.points.push_back(point);
  }
  return goal;
}

std::vector<double> DriverTest::Angles() {
  std::vector<double> degrees;
  EXPECT_EQ(robot.get_angles(degrees), 0);
  std::vector<double> radians;
  for (double value : degrees) {
    radians.push_back(Radians(value));
  }
  return radians;
}

}  // namespace tavrostest
