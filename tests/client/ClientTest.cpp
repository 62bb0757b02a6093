#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "Commands.h"
#include "client/Client.h"
#include "common/RobotEvent.h"
#include "core/LoopbackListener.h"
#include "support/ProcessProbe.h"
#include "support/ScriptedController.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

class ClientTest : public ::testing::Test {
protected:
  void Connect() {
    ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg()));
    ASSERT_TRUE(controller.Accept());
  }

  // Queues `task` and takes it off the wire as the controller.
  void Exchange(const Tasks& task, tavsim::ClientMessage& command) {
    ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(task));
    ASSERT_TRUE(controller.ReceiveCommand(task.params.at("function_name"), command));
  }

  void TearDown() override { client.FinalizeSocket(); }

  tavtest::ScriptedController controller;
  Client client;
  Message result;
};

TEST_F(ClientTest, QueuedTasksLeaveInOrderAndRepliesAreCollectedByName) {
  ASSERT_EQ(RobotEvents::kSuccess,
            client.AddTasks(CommandTask("move_to_angles", 5201, {{"velocity", "0.500000"}, {"block", "1"}})));
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("recover", 5202)));
  ASSERT_NO_FATAL_FAILURE(Connect());

  tavsim::ClientMessage move;
  tavsim::ClientMessage recover;
  ASSERT_TRUE(controller.ReceiveCommand("move_to_angles", move));
  EXPECT_EQ(
      "<root><head><timestamp>5201</timestamp><ClientID>7</ClientID></head><function><parameter><block>1</block>"
      "<velocity>0.500000</velocity></parameter><name>move_to_angles</name></function><tail><checksum>1926</checksum>"
      "</tail></root>",
      move.raw);
  ASSERT_TRUE(controller.ReceiveCommand("recover", recover));
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(HeartbeatTask()));
  EXPECT_TRUE(controller.ReceiveHeart());

  ASSERT_TRUE(controller.Reply(recover, "0"));
  ASSERT_EQ(RobotEvents::kSuccess, client.GetResult("recover5202", result));
  EXPECT_EQ((Message{{"identifier", "recover5202"}, {"state", "0"}}), result);
  ASSERT_TRUE(controller.Reply(move, "3", {{"result1", "1.5,2.5"}}));
  ASSERT_EQ(RobotEvents::kSuccess, client.GetResult("move_to_angles5201", result));
  EXPECT_EQ("3", result["state"]);
  EXPECT_EQ("1.5,2.5", result["result1"]);
}

TEST_F(ClientTest, ServerErrorIsReturnedByEveryLaterCallAndPrinted) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  ::testing::internal::CaptureStdout();
  ASSERT_TRUE(controller.SendError("7"));
  const int waited = client.GetResult("recover1", result);
  const std::string printed = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(7, waited);
  EXPECT_NE(std::string::npos, printed.find("call back 7\n")) << printed;
  EXPECT_EQ(7, client.AddTasks(CommandTask("recover", 2)));
  EXPECT_EQ(7, client.InitializeSocket("127.0.0.1", controller.PortArg()));
  EXPECT_TRUE(controller.ExpectSilence(200ms));
}

TEST_F(ClientTest, ReplyWithABadChecksumFailsTheSession) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  tavsim::ClientMessage command;
  ASSERT_NO_FATAL_FAILURE(Exchange(CommandTask("get_angles", 9), command));
  ASSERT_TRUE(controller.ReplyWithChecksum(command, "1", "0", {{"result1", "1,2"}}));
  EXPECT_EQ(RobotEvents::kDecodeFailed, client.GetResult("get_angles9", result));
  EXPECT_EQ(RobotEvents::kDecodeFailed, client.AddTasks(CommandTask("recover", 10)));
}

TEST_F(ClientTest, FailedConnectPoisonsTheClient) {
  const tavsim::RefusingPort refusing;
  EXPECT_EQ(RobotEvents::kConnectFailed, client.InitializeSocket("127.0.0.1", static_cast<short>(refusing.Port())));
  EXPECT_EQ(RobotEvents::kConnectFailed, client.AddTasks(CommandTask("recover", 1)));
  EXPECT_EQ(RobotEvents::kConnectFailed, client.GetResult("recover1", result));
  EXPECT_EQ(RobotEvents::kConnectFailed, client.InitializeSocket("127.0.0.1", controller.PortArg()));
}

TEST_F(ClientTest, UnparsableAddressLeavesTheSessionUsable) {
  EXPECT_EQ(RobotEvents::kSocketSetupFailed, client.InitializeSocket("127.0.0.256", controller.PortArg()));
  EXPECT_EQ(RobotEvents::kSocketSetupFailed, client.InitializeSocket("localhost", controller.PortArg()));
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("recover", 1)));
  ASSERT_NO_FATAL_FAILURE(Connect());
  tavsim::ClientMessage command;
  EXPECT_TRUE(controller.ReceiveCommand("recover", command));
}

TEST_F(ClientTest, WaitingCallWakesWhenItsReplyIsFiledAndBurnsNoCpu) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  tavsim::ClientMessage command;
  ASSERT_NO_FATAL_FAILURE(Exchange(CommandTask("get_velocity", 3), command));

  Clock::time_point written;
  std::thread controllerSide([&] {
    std::this_thread::sleep_for(2s);
    written = Clock::now();
    EXPECT_TRUE(controller.Reply(command, "0", {{"result1", "0.1"}}));
  });
  const double cpuBefore = tavtest::ProcessCpuSeconds();
  const int waited = client.GetResult("get_velocity3", result);
  const auto returned = Clock::now();
  const double cpuUsed = tavtest::ProcessCpuSeconds() - cpuBefore;
  controllerSide.join();

  EXPECT_EQ(RobotEvents::kSuccess, waited);
  EXPECT_EQ("0.1", result["result1"]);
  EXPECT_LT(returned - written, 200ms);
  EXPECT_LT(cpuUsed, 0.05);
}

TEST_F(ClientTest, HeartbeatReachesTheControllerAfterNineSeconds) {
  const auto start = Clock::now();
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_TRUE(controller.ReceiveHeart(15s));
  const auto beat = Clock::now() - start;
  EXPECT_GE(beat, 9s);
  EXPECT_LT(beat, 11s);
  // Answered, so the heart's wait ends and disconnecting does not block on it.
  ASSERT_TRUE(controller.SendHeartReply());
}

}  // namespace
