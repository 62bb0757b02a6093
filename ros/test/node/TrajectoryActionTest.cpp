#include <std_srvs/Trigger.h>

#include "DriverFixture.h"

namespace tavrostest {
namespace {

using actionlib::TerminalState;
using std::chrono::seconds;

class TrajectoryActionTest : public DriverTest {
protected:
  void SetUp() override {
    DriverTest::SetUp();
    StartConnected();
  }

  // Joints 1 to 6 from where they are to `offset` radians further, in `seconds`.
  Goal Sweep(double offset, double duration) {
    const std::vector<double> start = Angles();
    std::vector<double> middle = start;
    std::vector<double> end = start;
    for (std::size_t i = 0; i < end.size(); ++i) {
      middle[i] += offset / 2;
      end[i] += offset;
    }
    return MakeGoal({{duration / 2, middle}, {duration, end}});
  }
};

TEST_F(TrajectoryActionTest, FollowsATrajectoryWithFeedbackEveryCycle) {
  const Goal goal = Sweep(Radians(20), 2.0);
  GoalTracker tracker(*action, goal);
  ASSERT_TRUE(tracker.WaitDone(seconds(20)));
  EXPECT_EQ(tracker.State(), TerminalState::SUCCEEDED) << tracker.Outcome().error_string;
  EXPECT_EQ(tracker.Outcome().error_code, Result::SUCCESSFUL);
  const std::vector<double> reached = Angles();
  for (std::size_t i = 0; i < reached.size(); ++i) {
    EXPECT_NEAR(reached[i], goal.trajectory.points.back().positions[i], Radians(0.05));
  }
  // One feedback per set-point, 250 over the 2 s at 125 Hz; a loaded machine (a sanitizer
  // build) skips cycles and drops some on the way, but never comes down to a handful.
  EXPECT_GT(tracker.Feedbacks(), 25U);
  const auto last = tracker.LastFeedback();
  EXPECT_EQ(last.joint_names, goal.trajectory.joint_names);
  ASSERT_EQ(last.desired.positions.size(), 6U);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_NEAR(last.desired.positions[i], goal.trajectory.points.back().positions[i], Radians(1))
        << "radians, at the end";
    EXPECT_NEAR(last.actual.positions[i] - last.desired.positions[i], last.error.positions[i],
                1e-9);
  }
}

TEST_F(TrajectoryActionTest, StartsAtTheTrajectorysStamp) {
  Goal goal = Sweep(Radians(10), 1.0);
  const auto sent = std::chrono::steady_clock::now();
  goal.trajectory.header.stamp = ros::Time::now() + ros::Duration(1.5);
  GoalTracker tracker(*action, goal);
  ASSERT_TRUE(tracker.WaitFeedback(1, seconds(10)));
  EXPECT_GE(std::chrono::steady_clock::now() - sent, std::chrono::milliseconds(1450));
  ASSERT_TRUE(tracker.WaitDone(seconds(10)));
  EXPECT_EQ(tracker.State(), TerminalState::SUCCEEDED) << tracker.Outcome().error_string;
}

TEST_F(TrajectoryActionTest, CancelBrakesTheArmShortOfTheGoal) {
  const Goal goal = Sweep(Radians(40), 4.0);
  GoalTracker tracker(*action, goal);
  ASSERT_TRUE(tracker.WaitFeedback(60, seconds(10)));
  tracker.Cancel();
  ASSERT_TRUE(tracker.WaitDone(seconds(5)));
  EXPECT_EQ(tracker.State(), TerminalState::PREEMPTED);
  ASSERT_EQ(robot.wait_for_motors(), 0);
  const std::vector<double> stopped = Angles();
  EXPECT_LT(stopped[0], goal.trajectory.points.back().positions[0] - Radians(10));
}

TEST_F(TrajectoryActionTest, ANewGoalReplacesTheRunningOne) {
  const Goal first = Sweep(Radians(40), 4.0);
  GoalTracker firstTracker(*action, first);
  ASSERT_TRUE(firstTracker.WaitFeedback(40, seconds(10)));
  const Goal second = Sweep(Radians(-10), 1.5);
  GoalTracker secondTracker(*action, second);
  ASSERT_TRUE(firstTracker.WaitDone(seconds(5)));
  EXPECT_EQ(firstTracker.State(), TerminalState::PREEMPTED);
  ASSERT_TRUE(secondTracker.WaitDone(seconds(10)));
  EXPECT_EQ(secondTracker.State(), TerminalState::SUCCEEDED)
      << secondTracker.Outcome().error_string;
  EXPECT_NEAR(Angles()[0], second.trajectory.points.back().positions[0], Radians(0.05));
}

TEST_F(TrajectoryActionTest, RefusesGoalsItCannotFollow) {
  // One of each way to refuse: a name the arm does not have, a point its names do not fit, and
  // a move beyond the arm's limits. Every other bad name or point is refused on the same paths.
  const std::vector<double> here = Angles();
  std::vector<double> far = here;
  far[0] += Radians(90);
  Goal unknown = MakeGoal({{1.0, here}});
  unknown.trajectory.joint_names[5] = std::string(kPrefix) + "joint_7";
  const std::pair<Goal, int> cases[] = {
      {unknown, Result::INVALID_JOINTS},
      {MakeGoal({{1.0, {here.begin(), here.begin() + 5}}}), Result::INVALID_GOAL},
      {MakeGoal({{0.05, far}}), Result::INVALID_GOAL},
  };
  for (const auto& [goal, code] : cases) {
    GoalTracker tracker(*action, goal);
    ASSERT_TRUE(tracker.WaitDone(seconds(10)));
    EXPECT_EQ(tracker.State(), TerminalState::REJECTED);
    EXPECT_EQ(tracker.Outcome().error_code, code);
    EXPECT_FALSE(tracker.Outcome().error_string.empty());
  }
}

TEST_F(TrajectoryActionTest, AbortsWhenThePathToleranceIsExceeded) {
  Goal goal = Sweep(Radians(30), 1.0);
  for (const std::string& name : goal.trajectory.joint_names) {
    tavclient_ros::JointTolerance tolerance;
    tolerance.name = name;
    tolerance.position = 1e-7;
    goal.path_tolerance.push_back(tolerance);
  }
  GoalTracker tracker(*action, goal);
  ASSERT_TRUE(tracker.WaitDone(seconds(10)));
  EXPECT_EQ(tracker.State(), TerminalState::ABORTED);
  EXPECT_EQ(tracker.Outcome().error_code, Result::PATH_TOLERANCE_VIOLATED);
  EXPECT_FALSE(tracker.Outcome().error_string.empty());
}

TEST_F(TrajectoryActionTest, AbortsWhenTheGoalIsNotReachedInTime) {
  // Replies carry about seven digits: a joint never comes within 1e-12 rad of 0.123456789 rad.
  std::vector<double> target = Angles();
  target[0] = 0.123456789;
  Goal goal = MakeGoal({{1.0, target}});
  tavclient_ros::JointTolerance tolerance;
  tolerance.name = goal.trajectory.joint_names[0];
  tolerance.position = 1e-12;
  goal.goal_tolerance.push_back(tolerance);
  goal.goal_time_tolerance = ros::Duration(0.1);
  GoalTracker tracker(*action, goal);
  ASSERT_TRUE(tracker.WaitDone(seconds(10)));
  EXPECT_EQ(tracker.State(), TerminalState::ABORTED);
  EXPECT_EQ(tracker.Outcome().error_code, Result::GOAL_TOLERANCE_VIOLATED);
  EXPECT_NEAR(Angles()[0], target[0], Radians(0.05)) << "close, but not within 1e-12 rad";
}

TEST_F(TrajectoryActionTest, AbortsWithTheControllersRefusal) {
  GoalTracker tracker(*action, Sweep(Radians(30), 3.0));
  ASSERT_TRUE(tracker.WaitFeedback(20, seconds(10)));
  std_srvs::Trigger stop;
  ASSERT_TRUE(ros::service::call("/arm/stop", stop));
  ASSERT_TRUE(tracker.WaitDone(seconds(5)));
  EXPECT_EQ(tracker.State(), TerminalState::ABORTED);
  EXPECT_NE(tracker.Outcome().error_string.find("2001051"), std::string::npos)
      << tracker.Outcome().error_string;
}

}  // namespace
}  // namespace tavrostest
