#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <cmath>
#include <fstream>
#include <future>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "client/Client.h"
#include "client/Tasks.h"
#include "common/RobotEvent.h"
#include "core/ControllerReplies.h"
#include "support/ManualClock.h"
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

// A Client connected to a scripted controller, its time on a clock the test moves.
class ClientOnClockTest : public ::testing::Test {
protected:
  void SetUp() override { client._useClock(clock); }

  // Closing the connection releases the calls still waiting, should a check have failed.
  void TearDown() override { client.FinalizeSocket(); }

  // After the settings that apply from the connect on.
  void Connect() {
    start = clock.Now();
    ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg()));
    ASSERT_TRUE(controller.Accept());
  }

  // A round trip that the controller has received and not answered yet.
  std::future<int> StartCall(const std::string& functionName, int timestamp,
                             tavsim::ClientMessage& command) {
    std::future<int> started = std::async(std::launch::async, [this, functionName, timestamp] {
      return client.Exchange(CommandTask(functionName, timestamp),
                             functionName + std::to_string(timestamp), reply);
    });
    EXPECT_TRUE(controller.ReceiveCommand(functionName, command));
    return started;
  }

  // Moves the clock to just before `deadline` and waits until the waits have looked again.
  void AdvanceToJustBefore(SessionClock::TimePoint deadline) {
    ASSERT_TRUE(clock.AwaitWaitFor(deadline)) << "a wait for that deadline";
    const int asked = clock.WaitsFor(deadline);
    clock.Advance(deadline - clock.Now() - 1ns);
    ASSERT_TRUE(clock.AwaitWaitFor(deadline, asked + 1)) << "the wait looked again";
  }

  // A heartbeat goes out at `deadline`, not a nanosecond before.
  void ExpectHeartAt(SessionClock::TimePoint deadline) {
    ASSERT_NO_FATAL_FAILURE(AdvanceToJustBefore(deadline));
    clock.Advance(1ns);
    EXPECT_TRUE(controller.ReceiveHeart());
  }

  // `waiting` ends with a time-out at `deadline`, not a nanosecond before.
  void ExpectTimeoutAt(SessionClock::TimePoint deadline, std::future<int>& waiting) {
    ASSERT_NO_FATAL_FAILURE(AdvanceToJustBefore(deadline));
    EXPECT_EQ(std::future_status::timeout, waiting.wait_for(0s));
    clock.Advance(1ns);
    EXPECT_EQ(RobotEvents::kReplyTimeout, waiting.get());
  }

  tavtest::ManualClock clock;
  tavtest::ScriptedController controller;
  std::promise<int> failed;
  Client client;
  SessionClock::TimePoint start;
  Message reply;
  Message otherReply;
  std::future<int> call;
  std::future<int> other;
};

TEST_F(ClientOnClockTest, RefusedHeartbeatSettingsKeepTheNineSecondPeriod) {
  const std::vector<std::pair<double, double>> refused{{0, 20},       {-1, 20}, {NAN, 20},
                                                       {1, HUGE_VAL}, {5, 5},   {6, 5}};
  for (const auto& [period, limit] : refused) {
    EXPECT_EQ(RobotEvents::kInvalidArgument, client.SetHeartbeat(period, limit))
        << period << ", " << limit;
  }
  ASSERT_NO_FATAL_FAILURE(Connect());
  ExpectHeartAt(start + 9s);
}

TEST_F(ClientOnClockTest, RefusedReplyTimeoutsKeepTheHourLongBound) {
  for (const double timeout : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
    EXPECT_EQ(RobotEvents::kInvalidArgument, client.SetReplyTimeout(timeout)) << timeout;
  }
  ASSERT_EQ(RobotEvents::kSuccess, client.SetHeartbeat(5000, 10000));  // no silence meanwhile
  ASSERT_NO_FATAL_FAILURE(Connect());
  tavsim::ClientMessage command;
  call = StartCall("get_velocity", 3, command);
  ExpectTimeoutAt(start + 3600s, call);
}

// The period runs from the end of the last beat; the controller need not answer one.
TEST_F(ClientOnClockTest, TheHeartBeatsAtTheEndOfEveryPeriod) {
  ASSERT_EQ(RobotEvents::kSuccess, client.SetHeartbeat(2, 100));
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_NO_FATAL_FAILURE(ExpectHeartAt(start + 2s));
  ExpectHeartAt(start + 4s);
}

TEST_F(ClientOnClockTest, TheSessionFailsWhenTheControllerIsSilentForExactlyTheLimit) {
  ASSERT_EQ(RobotEvents::kSuccess, client.SetHeartbeat(4, 5));
  ASSERT_NO_FATAL_FAILURE(Connect());
  client.SetEventCallback([this](int code) { failed.set_value(code); });
  // Something arrives 1 s after the connect: the silence counts from there.
  ASSERT_TRUE(clock.AwaitWaitFor(start + 4s)) << "the first heartbeat";
  clock.Advance(1s);
  ASSERT_TRUE(controller.Send(tavsim::CommandReplyMessage({"1", "stop", "0", {}})));
  ASSERT_EQ(RobotEvents::kSuccess, client.GetResult("stop1", reply));
  clock.Advance(3s);  // the heartbeat; the watchdog looks again and sees the arrival
  ASSERT_TRUE(controller.ReceiveHeart());
  ASSERT_NO_FATAL_FAILURE(AdvanceToJustBefore(start + 6s));
  EXPECT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("stop", 2)));
  clock.Advance(1ns);
  EXPECT_EQ(RobotEvents::kControllerSilent, failed.get_future().get());
  EXPECT_EQ(RobotEvents::kControllerSilent, client.AddTasks(CommandTask("stop", 3)));
}

// A wait that ends at its bound leaves the session usable, and the late reply answers nobody.
TEST_F(ClientOnClockTest, AReplyTimeoutEndsACallAtExactlyItsBound) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_EQ(RobotEvents::kSuccess, client.SetReplyTimeout(5));
  tavsim::ClientMessage late;
  call = StartCall("get_velocity", 3, late);
  ASSERT_NO_FATAL_FAILURE(ExpectTimeoutAt(start + 5s, call));

  ASSERT_TRUE(controller.Reply(late, "0", {{"result1", "0.5"}}));
  tavsim::ClientMessage next;
  call = StartCall("get_velocity", 4, next);
  ASSERT_TRUE(controller.Reply(next, "0", {{"result1", "0.7"}}));
  EXPECT_EQ(RobotEvents::kSuccess, call.get());
  EXPECT_EQ("0.7", reply["result1"]);
}

TEST_F(ClientOnClockTest, AReplyTimeoutEndsAWaitInTheStoreAtExactlyItsBound) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_EQ(RobotEvents::kSuccess, client.SetReplyTimeout(5));
  ASSERT_EQ(RobotEvents::kSuccess, client.AddTasks(CommandTask("get_velocity", 3)));
  tavsim::ClientMessage command;
  ASSERT_TRUE(controller.ReceiveCommand("get_velocity", command));
  call =
      std::async(std::launch::async, [this] { return client.GetResult("get_velocity3", reply); });
  ExpectTimeoutAt(start + 5s, call);
}

// Beyond the cap a bound would overflow the clock and end every wait at once.
TEST_F(ClientOnClockTest, AReplyTimeoutFarBeyondAnyWaitIsCapped) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  ASSERT_EQ(RobotEvents::kSuccess, client.SetReplyTimeout(1e12));
  tavsim::ClientMessage command;
  call = StartCall("get_velocity", 3, command);
  EXPECT_TRUE(clock.AwaitWaitFor(start + std::chrono::seconds(1'000'000'000)));
  ASSERT_TRUE(controller.Reply(command, "0", {{"result1", "0.1"}}));
  EXPECT_EQ(RobotEvents::kSuccess, call.get());
}

// A call alone reads for itself; one that starts meanwhile queues its request and finds its
// reply filed by the first, whichever reply comes first.
TEST_F(ClientOnClockTest, ACallThatStartsWhileAnotherReadsGetsItsReplyFromTheReader) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  tavsim::ClientMessage first;
  call = StartCall("get_velocity", 3, first);
  other = std::async(std::launch::async, [this] {
    return client.Exchange(CommandTask("get_current", 4), "get_current4", otherReply);
  });
  tavsim::ClientMessage queued;
  ASSERT_TRUE(controller.ReceiveCommand("get_current", queued));
  ASSERT_TRUE(controller.Reply(queued, "0", {{"result1", "2.5"}}));
  EXPECT_EQ(RobotEvents::kSuccess, other.get());
  EXPECT_EQ("2.5", otherReply["result1"]);
  ASSERT_TRUE(controller.Reply(first, "0", {{"result1", "0.1"}}));
  EXPECT_EQ(RobotEvents::kSuccess, call.get());
  EXPECT_EQ("0.1", reply["result1"]);
}

// Once the call has handed reading back, the Receiver thread reads what comes unasked.
TEST_F(ClientOnClockTest, AfterACallTheReceiverReadsWhatComesUnasked) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  client.SetEventCallback([this](int code) { failed.set_value(code); });
  tavsim::ClientMessage command;
  call = StartCall("get_velocity", 3, command);
  ASSERT_TRUE(controller.Reply(command));
  ASSERT_EQ(RobotEvents::kSuccess, call.get());
  ASSERT_TRUE(controller.Send(tavsim::ErrorMessage("2002011")));
  EXPECT_EQ(2002011, failed.get_future().get());
}

bool AlwaysInterrupted() { return true; }

// A binding's check ends a wait in the store as a time-out would; the reading call goes on.
TEST_F(ClientOnClockTest, AnInterruptionCheckEndsAWaitInTheStore) {
  ASSERT_NO_FATAL_FAILURE(Connect());
  tavsim::ClientMessage first;
  call = StartCall("get_velocity", 3, first);
  other = std::async(std::launch::async, [this] {
    const CallInterruption::Scope interruptible(&AlwaysInterrupted);
    return client.Exchange(CommandTask("get_current", 4), "get_current4", otherReply);
  });
  EXPECT_EQ(RobotEvents::kReplyTimeout, other.get());
  ASSERT_TRUE(controller.Reply(first, "0", {{"result1", "0.1"}}));
  EXPECT_EQ(RobotEvents::kSuccess, call.get());
}

// On the steady clock: a call alone waits in its read, one that overlaps in the store; neither
// burns CPU while it waits, and both wake as soon as their reply is there.
TEST(ClientTest, AWaitingCallBurnsNoCpuAndWakesWhenItsReplyComes) {
  tavtest::ScriptedController controller;
  Client client;
  ASSERT_EQ(RobotEvents::kSuccess, client.SetReplyTimeout(10));
  ASSERT_EQ(RobotEvents::kSuccess, client.InitializeSocket("127.0.0.1", controller.PortArg()));
  ASSERT_TRUE(controller.Accept());
  Message first;
  Message second;
  std::future<int> reading = std::async(std::launch::async, [&] {
    return client.Exchange(CommandTask("get_velocity", 3), "get_velocity3", first);
  });
  tavsim::ClientMessage readingCommand;
  ASSERT_TRUE(controller.ReceiveCommand("get_velocity", readingCommand));
  std::future<int> storing = std::async(std::launch::async, [&] {
    return client.Exchange(CommandTask("get_current", 4), "get_current4", second);
  });
  tavsim::ClientMessage storingCommand;
  ASSERT_TRUE(controller.ReceiveCommand("get_current", storingCommand));
  const double cpuBefore = tavtest::ProcessCpuSeconds();
  std::this_thread::sleep_for(500ms);
  EXPECT_LT(tavtest::ProcessCpuSeconds() - cpuBefore, 0.1);
  for (auto [command, call] : {std::pair{&storingCommand, &storing}, {&readingCommand, &reading}}) {
    ASSERT_TRUE(controller.Reply(*command, "0", {{"result1", "0.1"}}));
    const auto replied = Clock::now();
    EXPECT_EQ(RobotEvents::kSuccess, call->get());
    EXPECT_LT(Clock::now() - replied, 200ms);
  }
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
