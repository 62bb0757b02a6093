#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>

#include "WorkerFixture.h"
#include "client/Sender.h"
#include "common/RobotEvent.h"

using namespace std::chrono_literals;

using SenderTest = LoadedWorkerTest<Sender>;

TEST_F(SenderTest, AFailedSendIsReportedWithoutSigpipeAndANewLoadSendsAgain) {
  ::shutdown(socket.Get(), SHUT_WR);  // every send on it now fails with EPIPE
  worker->AddTask(CommandTask("recover", 1));
  ASSERT_EQ(EventLog::WaitFor(1), Events{RobotEvents::kSendFailed});

  ASSERT_NO_FATAL_FAILURE(Reconnect());
  worker->AddTask(CommandTask("recover", 2));
  tavsim::ClientMessage message;
  ASSERT_TRUE(controller.ReceiveCommand("recover", message));
  EXPECT_EQ("2", message.timestamp);
  EXPECT_EQ(EventLog::WaitFor(2, 0ms), Events{RobotEvents::kSendFailed});
}

TEST_F(SenderTest, DestructionWakesTheWaitingSenderWithoutSendingMore) {
  worker->AddTask(CommandTask("recover", 1));
  worker->AddTask(CommandTask("reset", 2));
  tavsim::ClientMessage message;
  ASSERT_TRUE(controller.ReceiveCommand("recover", message));
  ASSERT_TRUE(controller.ReceiveCommand("reset", message));
  EXPECT_EQ("2", message.timestamp);

  // Loaded, with nothing queued: it waits for the next task, which never comes.
  const auto start = std::chrono::steady_clock::now();
  worker.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);
  EXPECT_TRUE(controller.ExpectSilence(100ms));
}
