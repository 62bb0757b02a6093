#include "GoalTracker.h"

namespace tavrostest {

// The handle is set once here; actionlib guards its own state, so calls on it take no lock of
// ours (its callbacks take ours while it holds its own).
GoalTracker::GoalTracker(ActionClient& client, const Goal& goal) {
  handle = client.sendGoal(
      goal,
      [this](ActionClient::GoalHandle transitioned) {
        if (transitioned.getCommState() == actionlib::CommState::DONE) {
          {
            std::lock_guard<std::mutex> doneLock(mutex);
            done = true;
          }
          changed.notify_all();
        }
      },
      [this](ActionClient::GoalHandle,
             const tavclient_ros::FollowJointTrajectoryFeedbackConstPtr& feedback) {
        {
          std::lock_guard<std::mutex> feedbackLock(mutex);
          ++feedbacks;
          lastFeedback = *feedback;
        }
        changed.notify_all();
      });
}

GoalTracker::~GoalTracker() { handle.reset(); }

bool GoalTracker::WaitDone(std::chrono::milliseconds wait) {
  std::unique_lock<std::mutex> lock(mutex);
  return changed.wait_for(lock, wait, [this] { return done; });
}

bool GoalTracker::WaitFeedback(std::size_t count, std::chrono::milliseconds wait) {
  std::unique_lock<std::mutex> lock(mutex);
  return changed.wait_for(lock, wait, [&] { return feedbacks >= count || done; }) &&
         feedbacks >= count;
}

void GoalTracker::Cancel() { handle.cancel(); }

actionlib::TerminalState::StateEnum GoalTracker::State() {
  return handle.getTerminalState().state_;
}

Result GoalTracker::Outcome() {
  const auto result = handle.getResult();
  return result ? *result : Result();
}

std::size_t GoalTracker::Feedbacks() {
  std::lock_guard<std::mutex> lock(mutex);
  return feedbacks;
}

tavclient_ros::FollowJointTrajectoryFeedback GoalTracker::LastFeedback() {
  std::lock_guard<std::mutex> lock(mutex);
  return lastFeedback;
}

}  // namespace tavrostest
