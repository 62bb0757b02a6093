#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "Commands.h"
#include "client/Client.h"
#include "common/RobotEvent.h"
#include "support/Polling.h"
#include "support/ProcessProbe.h"
#include "support/ScriptedController.h"
#include "support/TemporaryDirectory.h"
#include "support/TemporaryHome.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

// The logger thread, once started, lives as long as the process: start it before counting.
std::size_t ThreadsWithLoggerRunning() {
  { Client warmUp; }
  return tavtest::ThreadCount();
}

bool ThreadCountReturnsTo(std::size_t expected) {
  return tavtest::PollUntil(2s, [expected] { return tavtest::ThreadCount() == expected; });
}

TEST(ClientLifecycleTest, ConnectDisconnectCyclesLeaveNoThreadBehind) {
  const std::size_t baseline = ThreadsWithLoggerRunning();
  const auto start = Clock::now();
  { Client constructedOnly; }
  EXPECT_LT(Clock::now() - start, 500ms) << "a Client destroyed right after construction returns at once";

  tavtest::ScriptedController controller;
  for (int cycle = 0; cycle < 20; ++cycle) {
    Client client;
    ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg())) << cycle;
    ASSERT_TRUE(controller.Accept()) << cycle;
    client.FinalizeSocket();
  }
  EXPECT_TRUE(ThreadCountReturnsTo(baseline)) << tavtest::ThreadCount() << " threads, " << baseline << " expected";
}

TEST(ClientLifecycleTest, ConstructorThatThrowsJoinsTheWorkersItStarted) {
  const std::size_t baseline = ThreadsWithLoggerRunning();
  const tavtest::TemporaryDirectory directory;
  std::ofstream(directory.Path() + "/TavClientResource.properties") << "LOG_PATH=/nowhere\n";
  const tavtest::WorkingDirectory inDirectory(directory.Path());

  EXPECT_THROW(Client client, std::out_of_range);
  EXPECT_TRUE(ThreadCountReturnsTo(baseline)) << tavtest::ThreadCount() << " threads, " << baseline << " expected";
}

TEST(ClientLifecycleTest, ServerClosingWhileACallWaitsFailsItPromptlyAndQuietly) {
  {
    tavtest::ScriptedController controller;
    Client client;
    ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg()));
    ASSERT_TRUE(controller.Accept());
    const std::size_t linesBefore = tavtest::LogLines(::getenv("HOME")).size();

    Clock::time_point closed;
    std::thread controllerSide([&] {
      std::this_thread::sleep_for(300ms);
      closed = Clock::now();
      controller.Close();
    });
    Message result;
    const int waited = client.GetResult("recover1", result);
    const auto returned = Clock::now();
    controllerSide.join();
    EXPECT_EQ(RobotEvents::kReceiveFailed, waited);
    EXPECT_LT(returned - closed, 1s);
    EXPECT_EQ(RobotEvents::kReceiveFailed, client.AddTasks(CommandTask("recover", 2)));

    std::this_thread::sleep_for(1s);  // room for a runaway receiver to flood the log
    EXPECT_LT(tavtest::LogLines(::getenv("HOME")).size(), linesBefore + 20);
    client.FinalizeSocket();
  }

  tavtest::ScriptedController controller;
  Client client;
  ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg()));
  ASSERT_TRUE(controller.Accept());
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("recover", 3)));
  tavsim::ClientMessage command;
  ASSERT_TRUE(controller.ReceiveCommand("recover", command));
  ASSERT_TRUE(controller.Reply(command));
  Message result;
  EXPECT_EQ(RobotEvents::kSuccess, client.GetResult("recover3", result));
  client.FinalizeSocket();
}

}  // namespace
