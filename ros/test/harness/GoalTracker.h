#ifndef TAVROSTEST_GOALTRACKER_H
#define TAVROSTEST_GOALTRACKER_H

#include <actionlib/client/action_client.h>
#include <tavclient_ros/FollowJointTrajectoryAction.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace tavrostest {

using ActionClient = actionlib::ActionClient<tavclient_ros::FollowJointTrajectoryAction>;
using Goal = tavclient_ros::FollowJointTrajectoryGoal;
using Result = tavclient_ros::FollowJointTrajectoryResult;

// One goal sent through an action client, followed to its end: its feedback and its result.
// Several trackers on one client follow overlapping goals.
class GoalTracker {
public:
  GoalTracker(ActionClient& client, const Goal& goal);
  ~GoalTracker();
  GoalTracker(const GoalTracker&) = delete;
  GoalTracker& operator=(const GoalTracker&) = delete;

  // Waits until the goal has ended; false when it has not within `wait`.
  bool WaitDone(std::chrono::milliseconds wait);
  // Waits until `count` feedback messages have come.
  bool WaitFeedback(std::size_t count, std::chrono::milliseconds wait);
  void Cancel();

  actionlib::TerminalState::StateEnum State();
  Result Outcome();
  std::size_t Feedbacks();
  tavclient_ros::FollowJointTrajectoryFeedback LastFeedback();

private:
  std::mutex mutex;
  std::condition_variable changed;
  ActionClient::GoalHandle handle;
  bool done = false;
  std::size_t feedbacks = 0;
  tavclient_ros::FollowJointTrajectoryFeedback lastFeedback;
};

}  // namespace tavrostest

#endif
