#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <cmath>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Commands.h"
#include "client/Client.h"
#include "common/RobotEvent.h"
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
std::pair<int, Clock::duration> GetResultAcross(Client& client, const std::string& name,
                                                Message& result, std::chrono::milliseconds delay,
                                                Act act) {
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

// The one slow case: refused settings keep the defaults, so the first heartbeat comes nine
// seconds after the connect (and the silence limit, 20 s, has not failed the session by then).
TEST_F(ClientTest, RefusedHeartbeatSettingsKeepTheNineSecondDefault) {
  const std::vector<std::pair<double, double>> refused{{0, 20},       {-1, 20}, {NAN, 20},
                                                       {1, HUGE_VAL}, {5, 5},   {6, 5}};
  for (const auto& [period, limit] : refused) {
    EXPECT_EQ(RobotEvents::kInvalidArgument, client.SetHeartbeat(period, limit))
        << period << ", " << limit;
  }
  const auto start = Clock::now();
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_TRUE(controller.ReceiveHeart(15s));
  const auto beat = Clock::now() - start;
  EXPECT_GE(beat, 9s);
  EXPECT_LT(beat, 11s);
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
  EXPECT_TRUE(ThreadCountReturnsTo(baseline))
      << tavtest::ThreadCount() << " threads, " << baseline << " expected";
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
    EXPECT_TRUE(tavtest::PollUntil(
        2s, [&] { return (failed = client.AddTasks(CommandTask("stop", 0))) != 0; }));
    EXPECT_TRUE(tavtest::PollUntil(2s, [] {
      for (const std::string& line : tavtest::LogLines(::getenv("HOME"))) {
        if (line.find("Sender thread send failed.") != std::string::npos)
          return true;
      }
      return false;
    })) << "the Sender met the reset too";
  }  // joins the workers: every report has been made
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "call back " + std::to_string(failed) + "\n");
}

}  // namespace
