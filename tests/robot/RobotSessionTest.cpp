// A Robot's session as an application lives it: calls without a connection, waits that the
// application bounds or cancels, destruction while logged in, descriptors, and replies that
// come too late or were never asked for.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <future>
#include <string>

#include "common/RobotEvent.h"
#include "core/LoopbackListener.h"
#include "robot/RobotFixture.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// A Robot that is not logged in, and a controller that takes its logins.
class RobotSessionTest : public RobotTest {
protected:
  // Starts get_angles into `angle` and waits until the controller has its request, which stays
  // unanswered.
  std::future<int> PendingQuery() {
    std::future<int> query = Start([&] { return robot.get_angles(1, angle); });
    EXPECT_TRUE(controller.ReceiveCommand("get_angles", pending));
    return query;
  }

  tavsim::ClientMessage pending;
  double angle = 0.0;
};

// Every login starts afresh, whatever ended the last session, so a retry loop on one Robot
// reconnects once the controller is back; nothing of the refused attempts reaches the new one.
TEST_F(RobotSessionTest, ARetryLoopConnectsOnceTheControllerIsBack) {
  const auto start = Clock::now();
  EXPECT_EQ(robot.get_angles(1, angle), RobotEvents::kSendFailed) << "not logged in";
  EXPECT_LT(Clock::now() - start, 1s);
  EXPECT_EQ(robot.RobotLogin("127.0.0.256", controller.PortArg()), RobotEvents::kSocketSetupFailed);
  const tavsim::RefusingPort refusing;
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_EQ(robot.RobotLogin("127.0.0.1", static_cast<short>(refusing.Port())),
              RobotEvents::kConnectFailed);
  }
  ASSERT_TRUE(LogIn(robot));
  EXPECT_TRUE(controller.ExpectSilence(100ms)) << "nothing of the refused calls was kept for later";
}

// A lost connection is sticky until the next login, which starts clean: the half message the
// old connection left is not read into the new one.
TEST_F(RobotSessionTest, ALoginAfterALostConnectionStartsAFreshSession) {
  ASSERT_TRUE(LogIn(robot));
  ASSERT_TRUE(controller.Send("<root><head>"));  // cut short by the lost connection
  controller.Close();
  EXPECT_EQ(robot.get_angles(1, angle), RobotEvents::kReceiveFailed);
  EXPECT_EQ(robot.stop(), RobotEvents::kReceiveFailed) << "sticky until the next login";
  ASSERT_TRUE(LogIn(robot));
  std::future<int> query = PendingQuery();
  ASSERT_TRUE(controller.Reply(pending, "0", {{"result1", "[2]"}}));
  EXPECT_EQ(query.get(), 0);
  EXPECT_EQ(angle, 2.0);
}

// A controller that stops answering (stopped, its socket still open) fails the session at the
// silence limit: the waiting call returns then, every later call too, until a new login.
TEST_F(RobotSessionTest, AControllerThatFallsSilentFailsTheSessionAtTheLimit) {
  ASSERT_EQ(robot.SetReplyTimeout(5), 0);  // what a wait without the watchdog would end in
  ASSERT_EQ(robot.SetHeartbeat(0.1, 0.5), 0);
  ASSERT_TRUE(LogIn(robot));
  const auto heard = Clock::now();  // the login's reply was the last thing the controller sent
  ::testing::internal::CaptureStdout();
  const int code = robot.get_angles(1, angle);
  const auto waited = Clock::now() - heard;
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "call back 1003041\n");
  EXPECT_EQ(code, RobotEvents::kControllerSilent);
  EXPECT_GE(waited, 400ms);
  EXPECT_LT(waited, 900ms) << "the limit and 100 ms, with room for a loaded machine";
  EXPECT_EQ(robot.stop(), RobotEvents::kControllerSilent);
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

// A second logout closes nothing: the number of the old socket may already belong to someone
// else.
TEST_F(RobotSessionTest, ASecondLogoutClosesNoDescriptor) {
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
