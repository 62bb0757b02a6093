#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <chrono>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "Commands.h"
#include "EventLog.h"
#include "client/Receiver.h"
#include "common/RobotEvent.h"
#include "core/ControllerReplies.h"
#include "protocol/Parser.h"
#include "support/ClientSocket.h"
#include "support/ScriptedController.h"

using namespace std::chrono_literals;
using ::testing::AssertionResult;

namespace {

// A Receiver loaded with one end of a loopback connection whose other end the test drives.
class ReceiverTest : public ::testing::Test {
protected:
  void SetUp() override {
    EventLog::Clear();
    socket = tavtest::ConnectLoopback(controller.Port());
    ASSERT_TRUE(socket.Valid());
    ASSERT_TRUE(controller.Accept());
    receiver.RobotEventRegister(&EventLog::Record);
    receiver.Start();
    int fd = socket.Get();
    receiver.Load(fd);
  }

  void TearDown() override {
    receiver.Unload();
    ::shutdown(socket.Get(), SHUT_RDWR);
  }

  // Writes `bytes` and waits until the Receiver has taken them, so they make exactly one read.
  AssertionResult SendAsOneRead(const std::string& bytes) {
    if (AssertionResult sent = controller.Send(bytes); !sent) {
      return sent;
    }
    if (AssertionResult delivered = controller.WaitDelivered(); !delivered) {
      return delivered;
    }
    return tavtest::WaitQueueEmpty(socket.Get(), FIONREAD, 5s);
  }

  int Collect(const std::string& name, Message& result, std::chrono::milliseconds wait = 5s) {
    return receiver.WaitRecv(name, result, [] { return false; }, Receiver::Clock::now() + wait);
  }

  tavtest::ScriptedController controller;
  tavsim::UniqueFd socket;
  Receiver receiver;
};

TEST_F(ReceiverTest, FramesSplitMessagesAndCutsOneMessagePerRead) {
  const std::string angles = CommandReply("get_angles", "11", "0", {{"result1", "1.5,2.5"}});
  ASSERT_TRUE(SendAsOneRead("noise before the tag" + angles.substr(0, 10)));
  ASSERT_TRUE(SendAsOneRead(angles.substr(10, 30)));
  ASSERT_TRUE(SendAsOneRead(angles.substr(40)));
  Message result;
  ASSERT_EQ(RobotEvents::kSuccess, Collect("get_angles11", result));
  EXPECT_EQ((Message{{"identifier", "get_angles11"}, {"state", "0"}, {"result1", "1.5,2.5"}}), result);

  ASSERT_TRUE(SendAsOneRead(CommandReply("recover", "1") + CommandReply("stop", "2")));
  ASSERT_EQ(RobotEvents::kSuccess, Collect("recover1", result));
  EXPECT_EQ(RobotEvents::kNoReplyYet, receiver.GetRecv("stop2", result)) << "the second message waits for a read";
  ASSERT_TRUE(SendAsOneRead(tavsim::HeartReplyMessage()));
  EXPECT_EQ(RobotEvents::kSuccess, Collect("stop2", result));
  EXPECT_EQ(RobotEvents::kNoReplyYet, receiver.GetRecv("heart", result));
}

TEST_F(ReceiverTest, PiecesSmallerThanAnEarlierReadAreFramedFromTheirOwnBytes) {
  Message result;
  ASSERT_TRUE(SendAsOneRead(CommandReply("get_pose", "3", "0", {{"result1", std::string(800, '7')}})));
  ASSERT_EQ(RobotEvents::kSuccess, Collect("get_pose3", result));

  const std::string small = CommandReply("get_io", "4", "5", {{"result1", "1"}});
  for (std::size_t at = 0; at < small.size(); at += 40) {
    ASSERT_TRUE(SendAsOneRead(small.substr(at, 40)));
  }
  ASSERT_EQ(RobotEvents::kSuccess, Collect("get_io4", result));
  EXPECT_EQ((Message{{"identifier", "get_io4"}, {"state", "5"}, {"result1", "1"}}), result);
}

TEST_F(ReceiverTest, ReplyOfANameAlreadyWaitingIsDropped) {
  ASSERT_TRUE(SendAsOneRead(CommandReply("get_io", "4", "1")));
  ASSERT_TRUE(SendAsOneRead(CommandReply("get_io", "4", "2")));
  ASSERT_TRUE(SendAsOneRead(CommandReply("recover", "5")));
  Message result;
  ASSERT_EQ(RobotEvents::kSuccess, Collect("recover5", result));  // both get_io replies were handled before
  ASSERT_EQ(RobotEvents::kSuccess, receiver.GetRecv("get_io4", result));
  EXPECT_EQ("1", result["state"]);
  EXPECT_EQ(RobotEvents::kNoReplyYet, receiver.GetRecv("get_io4", result));
}

TEST_F(ReceiverTest, ServerErrorBecomesAnEventAndReadingGoesOn) {
  ASSERT_TRUE(SendAsOneRead(tavsim::ErrorMessage("7")));
  ASSERT_TRUE(EventLog::WaitFor(7));
  ASSERT_TRUE(SendAsOneRead(CommandReply("recover", "6")));
  Message result;
  EXPECT_EQ(RobotEvents::kSuccess, Collect("recover6", result));
}

TEST_F(ReceiverTest, ClosedPeerIsReportedOnce) {
  controller.Close();
  ASSERT_TRUE(EventLog::WaitFor(RobotEvents::kReceiveFailed));
  std::this_thread::sleep_for(200ms);  // room for a runaway loop to show itself
  EXPECT_EQ(1U, EventLog::Count(RobotEvents::kReceiveFailed));
}

struct UnreadableMessage {
  const char* name;
  std::string text;

  friend void PrintTo(const UnreadableMessage& message, std::ostream* out) { *out << message.name; }
};

class UnreadableMessageTest : public ReceiverTest, public ::testing::WithParamInterface<UnreadableMessage> {};

TEST_P(UnreadableMessageTest, StopsTheReceiverForGood) {
  ASSERT_TRUE(SendAsOneRead(GetParam().text));
  ASSERT_TRUE(EventLog::WaitFor(RobotEvents::kDecodeFailed));

  // Loaded again, it still reads nothing: its thread has ended.
  int fd = socket.Get();
  receiver.Load(fd);
  ASSERT_TRUE(controller.Send(CommandReply("recover", "8")));
  Message result;
  EXPECT_EQ(RobotEvents::kReplyTimeout, Collect("recover8", result, 500ms));
}

INSTANTIATE_TEST_SUITE_P(
    Receiver, UnreadableMessageTest,
    ::testing::Values(
        UnreadableMessage{"BadChecksum", tavsim::CommandReplyMessage({"9", "get_angles", "0", {{"result1", "1,2"}}}, "1")},
        UnreadableMessage{"ParserThrows", "<root><a/></root>"}),
    [](const ::testing::TestParamInfo<UnreadableMessage>& param) { return std::string(param.param.name); });

TEST(ParserOnTheReceiverThread, SelfClosingTagWithoutBlankThrows) {
  // The second case above relies on this: the parser throws, and the Receiver must not.
  Parser parser;
  Message result;
  std::string text = "<root><a/></root>";
  EXPECT_THROW(parser.unwrap(result, text), std::out_of_range);
}

}  // namespace
