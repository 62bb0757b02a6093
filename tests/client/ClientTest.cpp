#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <cmath>
#include <fstream>
#include <future>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "client/Client.h"
#include "client/Tasks.h"
#include "common/RobotEvent.h"
#include "support/Polling.h"
#include "support/ProcessProbe.h"
#include "support/ScriptedController.h"
#include "support/TemporaryHome.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

using Message = std::map<std::string, std::string>;

// A command task as the robot layer queues it, from client 7.
Tasks CommandTask(const std::string& functionName, int timestamp, Message parameters = {}) {
  Tasks task{Tasks::kCommand, std::move(parameters)};
  task.params["timestamp"] = std::to_string(timestamp);
  task.params["ClientID"] = "7";
  task.params["function_name"] = functionName;
  return task;
}

// The one slow case. Refused settings keep the defaults, so the first heartbeat comes nine
// seconds after the connect; meanwhile a call waiting for its reply burns no CPU, and it wakes
// as soon as the reply is filed.
TEST(ClientTest, RefusedSettingsKeepTheNineSecondHeartbeatAndAWaitingCallBurnsNoCpu) {
  tavtest::ScriptedController controller;
  Client client;
  const std::vector<std::pair<double, double>> refused{{0, 20},       {-1, 20}, {NAN, 20},
                                                       {1, HUGE_VAL}, {5, 5},   {6, 5}};
  for (const auto& [period, limit] : refused) {
    EXPECT_EQ(RobotEvents::kInvalidArgument, client.SetHeartbeat(period, limit))
        << period << ", " << limit;
  }
  for (const double timeout : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
    EXPECT_EQ(RobotEvents::kInvalidArgument, client.SetReplyTimeout(timeout)) << timeout;
  }
  const auto start = Clock::now();
  ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg()));
  ASSERT_TRUE(controller.Accept());
  tavsim::ClientMessage command;
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("get_velocity", 3)));
  ASSERT_TRUE(controller.ReceiveCommand("get_velocity", command));
  const double cpuBefore = tavtest::ProcessCpuSeconds();
  Message result;
  std::future<int> waiting =
      std::async(std::launch::async, [&] { return client.GetResult("get_velocity3", result); });
  ASSERT_TRUE(controller.ReceiveHeart(15s));
  const auto beat = Clock::now() - start;
  EXPECT_LT(tavtest::ProcessCpuSeconds() - cpuBefore, 0.1);
  EXPECT_GE(beat, 9s);
  EXPECT_LT(beat, 11s);
  ASSERT_TRUE(controller.Reply(command, "0", {{"result1", "0.1"}}));
  const auto replied = Clock::now();
  EXPECT_EQ(RobotEvents::kSuccess, waiting.get());
  EXPECT_LT(Clock::now() - replied, 200ms);
  EXPECT_EQ("0.1", result["result1"]);
}

// The logger thread, once started, lives as long as the process: a first Client starts it.
TEST(ClientLifecycleTest, ConstructorThatThrowsJoinsTheWorkersItStarted) {
  { Client warmUp; }
  const std::size_t baseline = tavtest::ThreadCount();
  const tavtest::TemporaryDirectory directory;
  std::ofstream(directory.Path() + "/TavClientResource.properties") << "LOG_PATH=/nowhere\n";
  const tavtest::WorkingDirectory inDirectory(directory.Path());
  EXPECT_THROW(Client client, std::out_of_range);
  EXPECT_TRUE(tavtest::PollUntil(2s, [baseline] { return tavtest::ThreadCount() == baseline; }))
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
        if (line.find("Sender thread send failed.") != std::string::npos) {
          return true;
        }
      }
      return false;
    })) << "the Sender met the reset too";
  }  // joins the workers: every report has been made
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "call back " + std::to_string(failed) + "\n");
}

}  // namespace
