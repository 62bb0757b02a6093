#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <memory>

#include "Commands.h"
#include "EventLog.h"
#include "client/Sender.h"
#include "common/RobotEvent.h"
#include "support/ClientSocket.h"
#include "support/ScriptedController.h"

using namespace std::chrono_literals;

namespace {

// A running Sender with one end of a loopback connection; the test plays the other end.
class SenderTest : public ::testing::Test {
protected:
  void SetUp() override {
    EventLog::Clear();
    sender->RobotEventRegister(&EventLog::Record);
    sender->Start();
    ASSERT_NO_FATAL_FAILURE(Reconnect());
  }

  void Reconnect() {
    socket = tavtest::ConnectLoopback(controller.Port());
    ASSERT_TRUE(socket.Valid());
    ASSERT_TRUE(controller.Accept());
    int fd = socket.Get();
    sender->Load(fd);
  }

  tavtest::ScriptedController controller;
  tavsim::UniqueFd socket;
  std::unique_ptr<Sender> sender = std::make_unique<Sender>();
};

TEST_F(SenderTest, FailedSendIsReportedAndEndsSendingWithoutSigpipe) {
  ::shutdown(socket.Get(), SHUT_WR);  // every send on it now fails with EPIPE
  sender->AddTask(CommandTask("recover", 1));
  ASSERT_TRUE(EventLog::WaitFor(RobotEvents::kSendFailed));

  ASSERT_NO_FATAL_FAILURE(Reconnect());
  sender->AddTask(CommandTask("recover", 2));
  EXPECT_TRUE(controller.ExpectSilence(500ms)) << "a Sender whose send failed never sends again";
  EXPECT_EQ(1U, EventLog::Count(RobotEvents::kSendFailed));
}

TEST_F(SenderTest, DestructionWakesTheWaitingSenderWithoutSendingMore) {
  sender->AddTask(CommandTask("recover", 1));
  sender->AddTask(CommandTask("reset", 2));
  tavsim::ClientMessage message;
  ASSERT_TRUE(controller.ReceiveCommand("recover", message));
  ASSERT_TRUE(controller.ReceiveCommand("reset", message));
  EXPECT_EQ("2", message.timestamp);

  // Loaded, with nothing queued: it waits for the next task, which never comes.
  const auto start = std::chrono::steady_clock::now();
  sender.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);
  EXPECT_TRUE(controller.ExpectSilence(100ms));
}

}  // namespace
