// A Robot's session as an application lives it: calls without a connection, waits that the
// application bounds or cancels, destruction while logged in, descriptors, and replies that
// come too late or were never asked for.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>

#include "common/RobotEvent.h"
#include "core/LoopbackListener.h"
#include "robot/RobotFixture.h"
#include "support/Polling.h"
#include "support/ProcessProbe.h"
#include "support/TemporaryHome.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// A Robot that is not logged in, and a controller that takes its logins.
class RobotSessionTest : public ::testing::Test {
protected:
  ::testing::AssertionResult LogIn(Robot& target) {
    std::future<int> login = std::async(std::launch::async, [&] { return target.RobotLogin("127.0.0.1", controller.PortArg()); });
    tavsim::ClientMessage hello;
    ::testing::AssertionResult played = controller.Accept();
    if (played) played = controller.ReceiveClientInfo(hello);
    if (played) played = controller.SendConnResult();
    if (!played) controller.Close();
    const int code = login.get();
    if (!played) return played;
    return code == 0 ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << "login returned " << code;
  }

  // Starts get_angles into `angle` and waits until the controller has its request, which stays unanswered.
  std::future<int> PendingQuery() {
    std::future<int> query = std::async(std::launch::async, [&] { return robot.get_angles(1, angle); });
    EXPECT_TRUE(controller.ReceiveCommand("get_angles", pending));
    return query;
  }

  tavtest::ScriptedController controller;
  Robot robot;
  tavsim::ClientMessage pending;
  double angle = 0.0;
};

// Before the login and after the logout a command is refused at once and sends nothing; the
// refusal does not fail the session, so a later login works.
TEST_F(RobotSessionTest, ACommandWithoutAConnectionIsRefusedAtOnce) {
  const auto start = Clock::now();
  EXPECT_EQ(robot.get_angles(1, angle), RobotEvents::kSendFailed);
  EXPECT_EQ(robot.stop(), RobotEvents::kSendFailed);
  EXPECT_LT(Clock::now() - start, 1s);
  ASSERT_TRUE(LogIn(robot));
  EXPECT_TRUE(controller.ExpectSilence(100ms)) << "nothing of the refused calls was kept for later";
  ASSERT_EQ(robot.RobotLogout(), 0);
  EXPECT_EQ(robot.recover(), RobotEvents::kSendFailed);
  EXPECT_TRUE(LogIn(robot));
}

TEST_F(RobotSessionTest, LogoutFromAnotherThreadReleasesAWaitingCall) {
  ASSERT_TRUE(LogIn(robot));
  std::future<int> query = PendingQuery();
  const auto logout = Clock::now();
  EXPECT_EQ(robot.RobotLogout(), 0);
  ASSERT_EQ(query.wait_for(1s), std::future_status::ready);
  EXPECT_LT(Clock::now() - logout, 100ms);
  EXPECT_EQ(query.get(), RobotEvents::kReceiveFailed);
  EXPECT_TRUE(LogIn(robot)) << "a released call leaves the session healthy";
}

TEST_F(RobotSessionTest, TheReplyTimeoutBoundsAWaitAndLeavesTheSessionUsable) {
  for (const double refused : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
    EXPECT_EQ(robot.SetReplyTimeout(refused), RobotEvents::kInvalidArgument) << refused;
  }
  ASSERT_EQ(robot.SetReplyTimeout(0.3), 0);
  ASSERT_TRUE(LogIn(robot));
  const auto start = Clock::now();
  std::future<int> query = PendingQuery();
  EXPECT_EQ(query.get(), RobotEvents::kReplyTimeout);
  const auto waited = Clock::now() - start;
  EXPECT_GE(waited, 300ms);
  EXPECT_LT(waited, 400ms);

  // The late reply is dropped; the next call gets its own.
  ASSERT_TRUE(controller.Reply(pending, "0", {{"result1", "[666]"}}));
  std::future<int> next = PendingQuery();
  ASSERT_TRUE(controller.Reply(pending, "0", {{"result1", "[1]"}}));
  EXPECT_EQ(next.get(), 0);
  EXPECT_EQ(angle, 1.0);
}

// Replies that nobody will collect, a late one and one never asked for, must not answer the
// call that reuses their name once the request counter wraps.
TEST_F(RobotSessionTest, AWrappedCounterNeverCollectsAStaleReply) {
  ASSERT_EQ(robot.SetReplyTimeout(0.2), 0);
  ASSERT_TRUE(LogIn(robot));
  _TavTimeStamp = 10238;
  EXPECT_EQ(PendingQuery().get(), RobotEvents::kReplyTimeout);
  ASSERT_TRUE(controller.Reply(pending, "0", {{"result1", "[666]"}}));
  ASSERT_TRUE(controller.Send(tavsim::CommandReplyMessage({"1", "get_angles", "0", {{"result1", "[667]"}}})));
  // Answered after both, so the Robot has read them when it asks again.
  std::future<int> stop = std::async(std::launch::async, [&] { return robot.stop(); });
  ASSERT_TRUE(controller.ReceiveCommand("stop", pending) && controller.Reply(pending));
  ASSERT_EQ(stop.get(), 0);
  const auto askAgain = [&](int counterBefore, const std::string& timestamp) {
    _TavTimeStamp = counterBefore;
    std::future<int> query = PendingQuery();
    EXPECT_EQ(pending.timestamp, timestamp);
    ASSERT_TRUE(controller.Reply(pending, "0", {{"result1", "[1]"}}));
    EXPECT_EQ(query.get(), 0);
    EXPECT_EQ(angle, 1.0) << "call " << timestamp;
  };
  askAgain(10238, "10239");  // the name of the late reply
  askAgain(10240, "1");      // the name of the reply never asked for
}

// Destruction logs out: at once, whether the controller would still answer or not.
TEST_F(RobotSessionTest, ARobotGoingOutOfScopeLoggedInLogsOutAtOnce) {
  auto session = std::make_unique<Robot>();
  ASSERT_TRUE(LogIn(*session));
  double value = 0.0;
  std::future<int> query = std::async(std::launch::async, [&] { return session->get_angles(1, value); });
  ASSERT_TRUE(controller.ReceiveCommand("get_angles", pending));
  query.wait_for(50ms);
  const auto start = Clock::now();
  session->RobotLogout();  // the call must end before its Robot does
  EXPECT_EQ(query.get(), RobotEvents::kReceiveFailed);
  ASSERT_TRUE(LogIn(*session));
  session.reset();
  EXPECT_LT(Clock::now() - start, 1s);
  EXPECT_TRUE(controller.ExpectClientClosed());
}

// Failed connects close their sockets, and a second logout closes nothing: the number of the
// old socket may already belong to someone else.
TEST_F(RobotSessionTest, DescriptorsAreNeitherLeakedNorClosedTwice) {
  const tavsim::RefusingPort refusing;
  // The logger's file stays open for the process: count once it is there.
  ASSERT_TRUE(tavtest::PollUntil(2s, [] { return !tavtest::LogLines(::getenv("HOME")).empty(); }));
  const std::size_t before = tavtest::OpenDescriptorCount();
  for (int i = 0; i < 100; ++i) {
    Robot failed;
    ASSERT_EQ(failed.RobotLogin("127.0.0.1", static_cast<short>(refusing.Port())), RobotEvents::kConnectFailed);
  }
  EXPECT_EQ(tavtest::OpenDescriptorCount(), before);

  ASSERT_TRUE(LogIn(robot));
  ASSERT_EQ(robot.RobotLogout(), 0);
  int reused[2];
  ASSERT_EQ(::pipe(reused), 0);
  EXPECT_EQ(robot.RobotLogout(), 0);
  EXPECT_NE(::fcntl(reused[0], F_GETFD), -1);
  EXPECT_NE(::fcntl(reused[1], F_GETFD), -1);
  ::close(reused[0]);
  ::close(reused[1]);
}

// The event line goes to standard output; a pipe there whose reader has gone must not kill
// the process with SIGPIPE. Nothing may print while standard output is broken.
TEST_F(RobotSessionTest, AnEventLineOnABrokenStdoutLeavesTheProcessAlive) {
  ASSERT_TRUE(LogIn(robot));
  std::fflush(stdout);
  const int savedStdout = ::dup(STDOUT_FILENO);
  int broken[2];
  ASSERT_EQ(::pipe(broken), 0);
  ::close(broken[0]);
  ::dup2(broken[1], STDOUT_FILENO);
  const auto previous = std::signal(SIGPIPE, SIG_DFL);

  controller.Close();
  const int code = robot.get_angles(1, angle);

  std::signal(SIGPIPE, previous);
  std::clearerr(stdout);
  ::dup2(savedStdout, STDOUT_FILENO);
  ::close(savedStdout);
  ::close(broken[1]);
  EXPECT_EQ(code, RobotEvents::kReceiveFailed);
}

}  // namespace
