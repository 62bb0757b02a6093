#ifndef TAVROSTEST_DRIVERFIXTURE_H
#define TAVROSTEST_DRIVERFIXTURE_H

#include <diagnostic_msgs/DiagnosticArray.h>
#include <gtest/gtest.h>
#include <sensor_msgs/JointState.h>

#include <memory>
#include <string>
#include <vector>

#include "Robot.h"
#include "harness/ChildProcess.h"
#include "harness/GoalTracker.h"
#include "harness/Recorder.h"
#include "reliability/SimulatorProcess.h"

namespace tavrostest {

constexpr double kPi = 3.14159265358979323846;
constexpr double Radians(double degrees) { return degrees * kPi / 180.0; }

// A simulator process and the driver node for it in the namespace /arm, with recorders of the
// driver's joint states and diagnostics, an action client, and a Robot of the test's own on the
// same simulator to check the driver against.
class DriverTest : public ::testing::Test {
protected:
  static constexpr const char* kPrefix = "left_";

  void SetUp() override;
  void TearDown() override;

  // Starts the simulator on `port`, or on a port the system picks.
  void StartSimulator(int port = 0);
  // Starts the driver for the simulator's port (or `port`), with extra `_name:=value` options.
  void StartDriver(int port, const std::vector<std::string>& options = {});
  // Logs the test's own Robot in to the simulator and sets it up.
  void ConnectRobot();
  // A simulator, the driver for it connected with its action served, and the test's Robot.
  void StartConnected();
  // Waits until the driver's diagnostics, from now on, say `connected`: the first that does, or
  // null.
  Recorder<diagnostic_msgs::DiagnosticArray>::Pointer WaitConnected(bool connected,
                                                                    std::chrono::milliseconds wait);
  // The joint names with the prefix: joint_1 ... joint_<count>.
  static std::vector<std::string> JointNames(int count = 6);
  // A goal through `points`, each {seconds, radians of joints 1..6}.
  static Goal MakeGoal(const std::vector<std::pair<double, std::vector<double>>>& points);
  // Joint angles of the test's Robot in radians.
  std::vector<double> Angles();

  std::unique_ptr<tavtest::SimulatorProcess> simulator;
  std::unique_ptr<ChildProcess> driver;
  std::unique_ptr<Recorder<sensor_msgs::JointState>> jointStates;
  std::unique_ptr<Recorder<diagnostic_msgs::DiagnosticArray>> diagnostics;
  std::unique_ptr<ActionClient> action;
  Robot robot;
};

}  // namespace tavrostest

#endif
