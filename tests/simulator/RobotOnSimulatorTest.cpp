// The library's Robot against the simulator: whole sessions, the arm's physics as a caller
// sees it, and injected faults arriving as the library's own codes.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <future>
#include <numeric>
#include <string>
#include <vector>

#include "Robot.h"
#include "common/RobotEvent.h"
#include "server/SimulatorServer.h"
#include "support/Polling.h"
#include "support/ReplyTimeout.h"

namespace {

using namespace std::chrono_literals;

const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};
constexpr double kPoseTolerance = 1e-4;
constexpr std::size_t kJoints = 6;
constexpr int kMotionInterrupted = 2001081;

short PortOf(const tavsim::SimulatorServer& server) { return static_cast<short>(server.Port()); }

// Angles that differ by whole turns (roll near +pi and -pi) are the same orientation.
double AngleGap(double a, double b) { return std::remainder(a - b, 2.0 * M_PI); }

void ExpectPoseNear(const _Pose& actual, const _Pose& expected, const std::string& what) {
  EXPECT_NEAR(actual.x, expected.x, kPoseTolerance) << what;
  EXPECT_NEAR(actual.y, expected.y, kPoseTolerance) << what;
  EXPECT_NEAR(actual.z, expected.z, kPoseTolerance) << what;
  EXPECT_NEAR(AngleGap(actual.roll, expected.roll), 0.0, kPoseTolerance) << what;
  EXPECT_NEAR(AngleGap(actual.pitch, expected.pitch), 0.0, kPoseTolerance) << what;
  EXPECT_NEAR(AngleGap(actual.yaw, expected.yaw), 0.0, kPoseTolerance) << what;
}

class RobotOnSimulatorTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_EQ(robot.SetReplyTimeout(tavtest::kReplyTimeoutSeconds), 0);
    ASSERT_EQ(robot.RobotLogin("127.0.0.1", PortOf(server)), 0);
    ASSERT_EQ(robot.Setup("arm", kChannel, Setup_Mode::Virtual), 0);
  }

  // Starts a six-second move of joint 1 and a wait for it, which pends at the simulator.
  std::future<int> WaitForASlowMove() {
    EXPECT_EQ(robot.move_to_angles(1, 60.0, 10.0f, 10.0f, Relative_Mode::Relative), 0);
    std::future<int> waiting =
        std::async(std::launch::async, [this] { return robot.wait_for_motors(1); });
    EXPECT_TRUE(tavtest::PollUntil(5000ms, [this] {
      return server.Controller().SecondsUntilNextCompletion().has_value();
    })) << "the wait reached the simulator";
    return waiting;
  }

  std::vector<double> Angles() {
    std::vector<double> angles(kJoints);
    EXPECT_EQ(robot.get_angles(angles.data()), 0);
    return angles;
  }

  tavsim::SimulatorServer server;
  Robot robot;
};

// Poses and joints through the library's texts and back: where the arm goes is what the caller
// reads. (The Python tests follow a path and read joints and I/O back.)
TEST_F(RobotOnSimulatorTest, TheArmReachesThePoseWhoseJointsInverseGave) {
  _Pose target, reached;
  ASSERT_EQ(robot.get_pose(target), 0);
  target.x -= 0.1;
  target.y += 0.08;
  target.yaw += 0.2;
  double solution[kJoints + 2] = {};
  ASSERT_EQ(robot.inverse(target, solution), 0);
  const int ids[] = {1, 2, 3, 4, 5, 6};
  ASSERT_EQ(robot.move_to_angles(kJoints, ids, solution, 150.0f, 400.0f, Relative_Mode::Absolute),
            0);
  ASSERT_EQ(robot.wait_for_motors(), 0);
  ASSERT_EQ(robot.get_pose(reached), 0);
  ExpectPoseNear(reached, target, "the arm at the joints of inverse");
  ASSERT_EQ(robot.forward(Angles().data(), reached), 0);
  ExpectPoseNear(reached, target, "forward of the arm's joints");
}

TEST_F(RobotOnSimulatorTest, TheGrippersActionShowsOnItsSensor) {
  int level = -1;
  ASSERT_EQ(robot.set_EOAT_action("gripper", "close"), 0);
  EXPECT_TRUE(tavtest::PollUntil(3000ms, [&] {
    return robot.get_input(9, level) == 0 && level == 1;
  })) << "the gripper's closed sensor";
  EXPECT_EQ(robot.set_EOAT_action("gripper", "explode"), 2001071);
}

TEST_F(RobotOnSimulatorTest, APendingWaitHoldsUpNoOtherCallerAndStopEndsItWithItsCode) {
  std::future<int> waiting = WaitForASlowMove();
  double angle = 0.0;
  ASSERT_EQ(robot.get_angles(1, angle), 0);
  EXPECT_EQ(waiting.wait_for(0ms), std::future_status::timeout)
      << "the query was answered while the wait pends";
  ASSERT_EQ(robot.stop(), 0);
  EXPECT_EQ(waiting.get(), kMotionInterrupted);
}

TEST_F(RobotOnSimulatorTest, AStoppedControllerRefusesMovesUntilRecover) {
  ASSERT_EQ(robot.stop(), 0);
  EXPECT_EQ(robot.move_to_angles(1, 10.0, 10.0f, 10.0f, Relative_Mode::Absolute), 2001051);
  ASSERT_EQ(robot.recover(), 0);
  EXPECT_EQ(robot.move_to_angles(1, 10.0, 10.0f, 10.0f, Relative_Mode::Absolute), 0);
}

// The fault matrix covers faults during a call; a damaged reply to the login fails the login.
TEST(RobotFaultTest, ADamagedLoginReplyFailsTheLogin) {
  tavsim::SimulatorServer server;
  server.Faults().Add(tavsim::Fault::CorruptChecksum("ClientInfo"));
  Robot robot;
  EXPECT_EQ(robot.RobotLogin("127.0.0.1", PortOf(server)), RobotEvents::kDecodeFailed);
  EXPECT_EQ(server.Faults().Fired(), 1u);
}

TEST(RobotMotorCountTest, SetUpDiscoversAsManyMotorsAsTheSimulatorHas) {
  for (const std::size_t motors : {kJoints, std::size_t{8}}) {
    tavsim::ServerOptions options;
    options.controller.motorCount = motors;
    tavsim::SimulatorServer server(options);
    Robot robot;
    ASSERT_EQ(robot.SetReplyTimeout(tavtest::kReplyTimeoutSeconds), 0);
    EXPECT_EQ(robot.RobotLogin("127.0.0.1", PortOf(server)), 0);
    EXPECT_EQ(
        robot.Setup("arm", kChannel, motors == kJoints ? Setup_Mode::Virtual : Setup_Mode::Real),
        0);
    size_t count = 0;
    int ids[10] = {};
    EXPECT_EQ(robot.get_motor_ids(count, ids), 0);
    std::vector<int> expected(motors);
    std::iota(expected.begin(), expected.end(), 1);
    EXPECT_EQ(std::vector<int>(ids, ids + count), expected);
  }
}

// Two arms in one process: the failure of one session is its own.
TEST(RobotArmsTest, OneFailingSessionLeavesTheOtherAnswering) {
  tavsim::SimulatorServer failingServer;
  tavsim::SimulatorServer healthyServer;
  Robot failing;
  Robot healthy;
  for (Robot* robot : {&failing, &healthy}) {
    ASSERT_EQ(robot->SetReplyTimeout(tavtest::kReplyTimeoutSeconds), 0);
  }
  ASSERT_EQ(failing.RobotLogin("127.0.0.1", PortOf(failingServer)), 0);
  ASSERT_EQ(healthy.RobotLogin("127.0.0.1", PortOf(healthyServer)), 0);
  ASSERT_EQ(healthy.Setup("arm", kChannel, Setup_Mode::Virtual), 0);
  std::promise<int> failingEvent;
  failing.SetEventCallback([&failingEvent](int code) { failingEvent.set_value(code); });
  healthy.SetEventCallback(
      [](int code) { ADD_FAILURE() << "event " << code << " on the healthy arm"; });
  failingServer.Faults().Add(tavsim::Fault::CloseConnection("get_angles"));
  double angle = 0.0;
  EXPECT_EQ(failing.get_angles(1, angle), RobotEvents::kReceiveFailed);
  std::future<int> reported = failingEvent.get_future();
  ASSERT_EQ(reported.wait_for(10s), std::future_status::ready);
  EXPECT_EQ(reported.get(), RobotEvents::kReceiveFailed);

  ASSERT_EQ(healthy.move_to_angles(2, -60.0, 150.0f, 400.0f, Relative_Mode::Absolute), 0);
  ASSERT_EQ(healthy.wait_for_motors(2), 0);
  EXPECT_EQ(failing.stop(), RobotEvents::kReceiveFailed) << "the failed session keeps its code";
}

}  // namespace
