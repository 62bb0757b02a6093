#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <regex>
#include <string>
#include <vector>

#include "client/MessageFramer.h"
#include "client/Receiver.h"
#include "common/RobotEvent.h"
#include "common/TavLogger.h"
#include "common/TavResource.h"
#include "core/ControllerReplies.h"
#include "core/LoopbackListener.h"
#include "support/Polling.h"
#include "support/ScriptedController.h"
#include "support/TemporaryHome.h"

using namespace std::chrono_literals;
using tavsim::CommandReplyMessage;
using ::testing::AssertionResult;

namespace {

using Message = Receiver::Message;
using Events = std::vector<Robot_Event>;

// What the Receiver reports through its plain-function callback, on its own thread.
class EventLog {
public:
  static void Add(Robot_Event event) {
    {
      std::lock_guard<std::mutex> lock(mutex);
      events.push_back(event);
    }
    changed.notify_all();
  }

  static void Clear() {
    std::lock_guard<std::mutex> lock(mutex);
    events.clear();
  }

  // The events once there are `count` of them, or those there are after `wait`.
  static Events WaitFor(std::size_t count,
                        std::chrono::milliseconds wait = std::chrono::seconds(5)) {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, wait, [count] { return events.size() >= count; });
    return events;
  }

private:
  static inline std::mutex mutex;
  static inline std::condition_variable changed;
  static inline Events events;
};

std::string Reply(const std::string& timestamp, const std::string& name,
                  const std::string& state = "0",
                  const tavtest::ScriptedController::Results& results = {}) {
  return CommandReplyMessage({timestamp, name, state, results});
}

// A running Receiver loaded with one end of a loopback connection whose other end the test
// drives as the controller; its events go to the EventLog.
class ReceiverTest : public ::testing::Test {
protected:
  void SetUp() override {
    EventLog::Clear();
    worker.RobotEventRegister(&EventLog::Add);
    worker.Start();
    ASSERT_NO_FATAL_FAILURE(Reconnect());
  }

  // The shutdown ends a receive in progress, so the worker can be joined.
  void TearDown() override {
    worker.Unload();
    ::shutdown(socket.Get(), SHUT_RDWR);
  }

  void Reconnect() {
    socket = tavsim::ConnectLoopback(controller.Port());
    ASSERT_TRUE(socket.Valid());
    ASSERT_TRUE(controller.Accept());
    int fd = socket.Get();
    worker.Load(fd);
  }

  // Writes `bytes` and waits until the Receiver has taken them, so they make exactly one read.
  AssertionResult SendAsOneRead(const std::string& bytes) {
    AssertionResult sent = controller.Send(bytes);
    sent = sent ? controller.WaitDelivered() : sent;
    return sent ? tavtest::WaitQueueEmpty(socket.Get(), FIONREAD, 5s) : sent;
  }

  int Collect(const std::string& name, Message& result, std::chrono::milliseconds wait = 5s) {
    const auto deadline = Receiver::Clock::now() + wait;
    while (Receiver::Clock::now() < deadline) {
      if (worker.Replies().Wait(
              name, result, [] { return false; }, [deadline] { return deadline; }) == 0) {
        return RobotEvents::kSuccess;
      }
    }
    return RobotEvents::kReplyTimeout;
  }

  tavtest::ScriptedController controller;
  tavsim::UniqueFd socket;
  Receiver worker;
};

// Both in one write and nothing after them: neither may wait for a later read.
TEST_F(ReceiverTest, FilesEveryMessageOfAReadAsSoonAsItCame) {
  Message result;
  ASSERT_TRUE(SendAsOneRead(Reply("1", "recover") +
                            Reply("2", "get_pose", "0", {{"result1", std::string(800, '7')}})));
  ASSERT_EQ(RobotEvents::kSuccess, Collect("recover1", result));
  EXPECT_EQ(RobotEvents::kSuccess, Collect("get_pose2", result, 1s));
}

// The first reply of a name is kept until it is collected (kept on purpose).
TEST_F(ReceiverTest, AReplyWhoseNameIsAlreadyFiledIsDropped) {
  ASSERT_TRUE(SendAsOneRead(Reply("4", "get_io", "1")));
  ASSERT_TRUE(SendAsOneRead(Reply("4", "get_io", "2")));
  ASSERT_TRUE(SendAsOneRead(Reply("5", "recover")));
  Message result;
  ASSERT_EQ(RobotEvents::kSuccess, Collect("recover5", result));  // both were handled
  ASSERT_EQ(RobotEvents::kSuccess, worker.GetRecv("get_io4", result));
  EXPECT_EQ("1", result["state"]);
  EXPECT_EQ(RobotEvents::kNoReplyYet, worker.GetRecv("get_io4", result));
}

// Its code is read like strtol, and reading goes on.
TEST_F(ReceiverTest, AServerErrorBecomesAnEventAndReadingGoesOn) {
  ASSERT_TRUE(SendAsOneRead(tavsim::ErrorMessage("7abc")));
  ASSERT_TRUE(SendAsOneRead(Reply("5", "recover")));
  Message result;
  ASSERT_EQ(RobotEvents::kSuccess, Collect("recover5", result));
  EXPECT_EQ(EventLog::WaitFor(1, 0ms), Events{7});
}

// The fault matrix covers a bad checksum, garbage and a closed or reset connection; these two
// only a made-up stream reaches. Either is reported once and ends the connection; loaded with
// a new one, the Receiver reads again.
TEST_F(ReceiverTest, AnUnreadableMessageEndsTheConnectionUntilTheNextLoad) {
  // "<a/>" without its blank makes the parser throw; the Receiver must not.
  for (const std::string& unreadable :
       {std::string("<root><a/></root>"),
        "<root>" + std::string(MessageFramer::kMaxMessageSize, 'x')}) {
    EventLog::Clear();
    ASSERT_TRUE(SendAsOneRead(unreadable));
    ASSERT_EQ(EventLog::WaitFor(1), Events{RobotEvents::kDecodeFailed});
    ASSERT_NO_FATAL_FAILURE(Reconnect());
    ASSERT_TRUE(controller.Send(Reply("8", "recover")));
    Message result;
    EXPECT_EQ(RobotEvents::kSuccess, Collect("recover8", result));
    EXPECT_EQ(EventLog::WaitFor(2, 0ms), Events{RobotEvents::kDecodeFailed});
  }
}

// An entry left from before a request is stale: the request counter wrapped.
TEST_F(ReceiverTest, AStaleReplyIsDroppedWhenItsNameIsAskedForAgain) {
  ASSERT_TRUE(
      SendAsOneRead(Reply("9", "get_angles", "0", {{"result1", "666"}}) + Reply("8", "stop")));
  Message result;
  ASSERT_EQ(RobotEvents::kSuccess, Collect("stop8", result));  // filed after the stale one
  worker.Replies().Expect("get_angles9");
  EXPECT_EQ(RobotEvents::kNoReplyYet, worker.GetRecv("get_angles9", result));
}

// A reply whose call gave up is dropped when it comes; the next of that name is kept.
TEST_F(ReceiverTest, AReplyWhoseCallGaveUpNeverReachesALaterCaller) {
  const std::uint64_t ticket = worker.Replies().Expect("get_angles9");
  worker.Replies().Abandon("get_angles9", ticket);
  ASSERT_TRUE(SendAsOneRead(Reply("9", "get_angles", "0", {{"result1", "666"}})));
  ASSERT_TRUE(SendAsOneRead(Reply("10", "stop")));
  Message result;
  ASSERT_EQ(RobotEvents::kSuccess, Collect("stop10", result));
  EXPECT_EQ(RobotEvents::kNoReplyYet, worker.GetRecv("get_angles9", result))
      << "the late reply was dropped";
  ASSERT_TRUE(SendAsOneRead(Reply("9", "get_angles", "0", {{"result1", "1"}})));
  ASSERT_EQ(RobotEvents::kSuccess, Collect("get_angles9", result));
  EXPECT_EQ("1", result["result1"]) << "the next reply of that name is kept";
}

// 20,000 replies nobody asked for, then garbage, then the reply of a call: the call gets it,
// the store keeps the newest, and the log counts them in a few lines.
TEST_F(ReceiverTest, AFloodOfUnaskedRepliesIsBoundedAndLoggedInAFewCountedLines) {
  constexpr int kFlood = 20000;
  ASSERT_EQ(TavResource::GetInstance().Load(), 0);
  TavLogger::GetInstance().StartLogging();
  TavLogger::GetInstance().Info("flood from");
  std::string flood;
  for (int i = 0; i < kFlood; ++i) {
    flood += Reply(std::to_string(i), "stop");
  }
  ASSERT_TRUE(controller.Send(flood + "garbage"));
  worker.Replies().Expect("recover99999");
  ASSERT_TRUE(controller.Send(Reply("99999", "recover")));
  Message result;
  ASSERT_EQ(RobotEvents::kSuccess, Collect("recover99999", result, 20s));
  const int firstKept = kFlood - static_cast<int>(Receiver::kMaxUnclaimedReplies) + 1;
  EXPECT_EQ(RobotEvents::kNoReplyYet,
            worker.GetRecv("stop" + std::to_string(firstKept - 1), result))
      << "the store keeps the newest";
  EXPECT_EQ(RobotEvents::kSuccess, worker.GetRecv("stop" + std::to_string(firstKept), result));
  controller.Close();  // the Receiver logs the counts it holds when the connection ends
  ASSERT_EQ(EventLog::WaitFor(1), Events{RobotEvents::kReceiveFailed});

  TavLogger::GetInstance().Info("flood to");
  const std::vector<std::string> lines =
      tavtest::LinesBetween(std::getenv("HOME"), "flood from", "flood to");
  std::size_t bytes = 0;
  long unasked = 0;
  const std::regex counted(R"(recv (\d+) more msgs nobody asked for in the last \d+ s\.$)");
  for (const std::string& line : lines) {
    bytes += line.size() + 1;
    std::smatch match;
    if (std::regex_search(line, match, counted)) {
      unasked += std::stol(match[1]);
    } else if (line.find("msg nobody asked for.") != std::string::npos) {
      ++unasked;
    }
  }
  EXPECT_EQ(unasked, kFlood) << "every unasked reply is counted";
  EXPECT_LT(bytes, 10u * kFlood);
}

}  // namespace
