#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <memory>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "Commands.h"
#include "client/Client.h"
#include "common/RobotEvent.h"
#include "core/LoopbackListener.h"
#include "support/Polling.h"
#include "support/ProcessProbe.h"
#include "support/ScriptedController.h"
#include "support/TemporaryHome.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

// GetResult(name) while the controller side does `act` after `delay`: the code, and how long
// after `act` the call returned.
template <typename Act>
std::pair<int, Clock::duration> GetResultAcross(Client& client, const std::string& name, Message& result,
                                                std::chrono::milliseconds delay, Act act) {
  Clock::time_point acted;
  std::thread controllerSide([&] {
    std::this_thread::sleep_for(delay);
    acted = Clock::now();
    act();
  });
  const int code = client.GetResult(name, result);
  const auto returned = Clock::now();
  controllerSide.join();
  return {code, returned - acted};
}

class ClientTest : public ::testing::Test {
protected:
  void Connect() {
    ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg()));
    ASSERT_TRUE(controller.Accept());
  }

  void TearDown() override { client.FinalizeSocket(); }

  tavtest::ScriptedController controller;
  Client client;
  Message result;
};

TEST_F(ClientTest, QueuedTasksLeaveInOrderAndRepliesAreCollectedByName) {
  EXPECT_EQ(RobotEvents::kSendFailed, client.AddTasks(CommandTask("stop", 5200))) << "not connected yet";
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("move_to_angles", 5201, {{"velocity", "0.5"}})));
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("recover", 5202)));
  tavsim::ClientMessage move, recover;
  ASSERT_TRUE(controller.ReceiveCommand("move_to_angles", move));
  EXPECT_EQ("0.5", move.parameters["velocity"]);
  ASSERT_TRUE(controller.ReceiveCommand("recover", recover));
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(Tasks{Tasks::kHeartbeat, {}}));
  EXPECT_TRUE(controller.ReceiveHeart());

  ASSERT_TRUE(controller.Reply(recover, "0"));
  ASSERT_EQ(RobotEvents::kSuccess, client.GetResult("recover5202", result));
  EXPECT_EQ((Message{{"identifier", "recover5202"}, {"state", "0"}}), result);
  ASSERT_TRUE(controller.Reply(move, "3", {{"result1", "1.5,2.5"}}));
  ASSERT_EQ(RobotEvents::kSuccess, client.GetResult("move_to_angles5201", result));
  EXPECT_EQ((Message{{"identifier", "move_to_angles5201"}, {"state", "3"}, {"result1", "1.5,2.5"}}), result);
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

// An address that does not parse is no session failure; a refused connect is, for good.
TEST_F(ClientTest, UnparsableAddressLeavesTheSessionUsableAndRefusedConnectPoisonsIt) {
  EXPECT_EQ(RobotEvents::kSocketSetupFailed, client.InitializeSocket("127.0.0.256", controller.PortArg()));
  EXPECT_EQ(RobotEvents::kSocketSetupFailed, client.InitializeSocket("localhost", controller.PortArg()));
  EXPECT_EQ(RobotEvents::kSendFailed, client.AddTasks(CommandTask("recover", 1))) << "not connected, not failed";
  const tavsim::RefusingPort refusing;
  EXPECT_EQ(RobotEvents::kConnectFailed, client.InitializeSocket("127.0.0.1", static_cast<short>(refusing.Port())));
  EXPECT_EQ(RobotEvents::kConnectFailed, client.AddTasks(CommandTask("recover", 2)));
  EXPECT_EQ(RobotEvents::kConnectFailed, client.GetResult("recover1", result));
  EXPECT_EQ(RobotEvents::kConnectFailed, client.InitializeSocket("127.0.0.1", controller.PortArg()));
}

TEST_F(ClientTest, WaitingCallWakesWhenItsReplyIsFiledAndBurnsNoCpu) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  tavsim::ClientMessage command;
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("get_velocity", 3)));
  ASSERT_TRUE(controller.ReceiveCommand("get_velocity", command));
  const double cpuBefore = tavtest::ProcessCpuSeconds();
  const auto [waited, late] = GetResultAcross(client, "get_velocity3", result, 2s, [&] {
    EXPECT_TRUE(controller.Reply(command, "0", {{"result1", "0.1"}}));
  });
  const double cpuUsed = tavtest::ProcessCpuSeconds() - cpuBefore;
  EXPECT_EQ(RobotEvents::kSuccess, waited);
  EXPECT_EQ("0.1", result["result1"]);
  EXPECT_LT(late, 200ms);
  EXPECT_LT(cpuUsed, 0.05);
}

// The heart is left unanswered: logging out must free the heart thread from its wait, so the
// Client is destroyed at once instead of after the hour-long reply time-out.
TEST_F(ClientTest, HeartbeatReachesTheControllerAfterNineSecondsAndLogoutEndsItsWait) {
  auto session = std::make_unique<Client>();  // the newest Client receives the heartbeats
  const auto start = Clock::now();
  ASSERT_EQ(RobotEvents::kSuccess, session->InitializeSocket("127.0.0.1", controller.PortArg()));
  ASSERT_TRUE(controller.Accept());
  ASSERT_TRUE(controller.ReceiveHeart(15s));
  const auto beat = Clock::now() - start;
  EXPECT_GE(beat, 9s);
  EXPECT_LT(beat, 11s);

  const auto logout = Clock::now();
  session->FinalizeSocket();
  session.reset();
  EXPECT_LT(Clock::now() - logout, 2s);
}

// The logger thread, once started, lives as long as the process: start it before counting.
std::size_t ThreadsWithLoggerRunning() {
  { Client warmUp; }
  return tavtest::ThreadCount();
}

bool ThreadCountReturnsTo(std::size_t expected) {
  return tavtest::PollUntil(2s, [expected] { return tavtest::ThreadCount() == expected; });
}

TEST(ClientLifecycleTest, ConstructorThatThrowsJoinsTheWorkersItStarted) {
  const std::size_t baseline = ThreadsWithLoggerRunning();
  const tavtest::TemporaryDirectory directory;
  std::ofstream(directory.Path() + "/TavClientResource.properties") << "LOG_PATH=/nowhere\n";
  const tavtest::WorkingDirectory inDirectory(directory.Path());
  EXPECT_THROW(Client client, std::out_of_range);
  EXPECT_TRUE(ThreadCountReturnsTo(baseline)) << tavtest::ThreadCount() << " threads, " << baseline << " expected";
}

// A reset that both workers see, the Receiver in its read and the Sender in a send of the tasks
// still queued, ends one connection: it is reported once, and the code the first failing call
// returned stays the session's.
TEST(ClientLifecycleTest, AResetSeenByBothWorkersIsReportedOnce) {
  tavtest::ScriptedController controller;
  ::testing::internal::CaptureStdout();
  int failed = RobotEvents::kSuccess;
  {
    Client client;
    ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg()));
    ASSERT_TRUE(controller.Accept());
    // Far more than the loopback socket buffers hold while the controller reads nothing.
    for (int task = 0; task < 1000; ++task) {
      const Message padding{{"pad", std::string(16384, 'x')}};
      ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("recover", task, padding)));
    }
    controller.Reset();
    EXPECT_TRUE(tavtest::PollUntil(2s, [&] { return (failed = client.AddTasks(CommandTask("stop", 0))) != 0; }));
    EXPECT_TRUE(tavtest::PollUntil(2s, [] {
      for (const std::string& line : tavtest::LogLines(::getenv("HOME"))) {
        if (line.find("Sender thread send failed.") != std::string::npos) return true;
      }
      return false;
    })) << "the Sender met the reset too";
  }  // joins the workers: every report has been made
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "call back " + std::to_string(failed) + "\n");
}

}  // namespace
