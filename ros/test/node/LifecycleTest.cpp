#include <signal.h>
#include <sys/wait.h>

#include "DriverFixture.h"

namespace tavrostest {
namespace {

using actionlib::TerminalState;
using std::chrono::seconds;

TEST_F(DriverTest, WaitsForAControllerThatStartsLater) {
  const int port = FreePort();
  StartDriver(port);
  const auto waiting = WaitConnected(false, seconds(10));
  ASSERT_TRUE(waiting && !waiting->status.empty());
  const auto& status = waiting->status[0];
  EXPECT_NE(status.message.find("joint states paused"), std::string::npos) << status.message;
  EXPECT_EQ(jointStates->Messages().size(), 0U);

  StartSimulator(port);
  ASSERT_TRUE(jointStates->WaitFor(1, seconds(10)));
}

TEST_F(DriverTest, EndsAtOnceOnAParameterThatCannotWork) {
  StartDriver(FreePort(), {"_publish_rate:=1000"});
  ASSERT_TRUE(driver->WaitExit(seconds(10)));
  EXPECT_TRUE(WIFEXITED(driver->Status()) && WEXITSTATUS(driver->Status()) == 2);
}

TEST_F(DriverTest, RidesOutAControllerRestart) {
  const int port = FreePort();
  StartSimulator(port);
  StartDriver(port);
  ASSERT_TRUE(jointStates->WaitFor(10, seconds(10)));
  ASSERT_TRUE(action->waitForActionServerToStart(ros::Duration(10)));

  simulator->Kill();
  const auto lost = WaitConnected(false, seconds(10));
  ASSERT_TRUE(lost);
  // Nothing stale: no joint state read after the loss was known. One read before may still be
  // on its way, as topics do not keep each other's order: the stamps tell.
  jointStates->Clear();
  GoalTracker refused(*action, MakeGoal({{1.0, std::vector<double>(6, 0.0)}}));
  ASSERT_TRUE(refused.WaitDone(seconds(10)));
  EXPECT_EQ(refused.State(), TerminalState::REJECTED);
  EXPECT_NE(refused.Outcome().error_string.find("not connected"), std::string::npos)
      << refused.Outcome().error_string;
  // Through the next diagnostics (a second later), nothing read while the loss was known.
  ASSERT_TRUE(WaitConnected(false, seconds(10)));
  for (const auto& state : jointStates->Messages()) {
    EXPECT_LT(state->header.stamp, lost->header.stamp);
  }

  StartSimulator(port);
  ASSERT_TRUE(jointStates->WaitFor(1, seconds(10)));
  // A fresh controller starts with its arm at zero: the state is the new one.
  ConnectRobot();
  const auto fresh = jointStates->Last();
  ASSERT_TRUE(fresh);
  EXPECT_NEAR(fresh->position.at(0), Angles()[0], 1e-6);
  EXPECT_TRUE(WaitConnected(true, seconds(10)));
}

TEST_F(DriverTest, SigintBrakesTheTrajectoryAndEndsTheNode) {
  StartConnected();
  std::vector<double> far = Angles();
  far[0] += Radians(60);
  GoalTracker tracker(*action, MakeGoal({{4.0, far}}));
  ASSERT_TRUE(tracker.WaitFeedback(40, seconds(10)));

  driver->Signal(SIGINT);
  ASSERT_TRUE(driver->WaitExit(seconds(5)));
  EXPECT_TRUE(WIFEXITED(driver->Status()) && WEXITSTATUS(driver->Status()) == 0);
  ASSERT_EQ(robot.wait_for_motors(), 0);
  EXPECT_LT(Angles()[0], far[0] - Radians(20)) << "braked, not carried on to the goal";
}

}  // namespace
}  // namespace tavrostest
