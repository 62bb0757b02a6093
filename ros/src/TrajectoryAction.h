#ifndef TAVDRIVER_TRAJECTORYACTION_H
#define TAVDRIVER_TRAJECTORYACTION_H

#include <actionlib/server/action_server.h>
#include <tavclient_ros/FollowJointTrajectoryAction.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "DriverOptions.h"
#include "JointNames.h"
#include "SessionKeeper.h"
#include "TrajectoryFollower.h"

namespace tavdriver {

// The follow_joint_trajectory action over the library's trajectory follower. Each accepted
// goal runs on a thread of its own, so that a new goal replaces the running one without a stop;
// a cancel brakes the arm.
class TrajectoryAction {
public:
  TrajectoryAction(ros::NodeHandle node, std::shared_ptr<tavclient::SharedRobot> sharedRobot,
                   std::shared_ptr<tavclient::StateMonitor> monitor,
                   const SessionKeeper& sessionKeeper, const JointNames& jointNames,
                   const DriverOptions& driverOptions);
  // Brakes a running goal and waits for every goal's thread.
  ~TrajectoryAction();
  TrajectoryAction(const TrajectoryAction&) = delete;
  TrajectoryAction& operator=(const TrajectoryAction&) = delete;

  // Ends the running goal, braking the arm; for the node's own shutdown.
  void Brake();
  // Brakes and waits until every goal has ended.
  void Shutdown();
  // "idle", or the running goal's id, for diagnostics.
  std::string State() const;
  std::uint64_t Finished() const { return finished.load(); }

private:
  using Server = actionlib::ActionServer<tavclient_ros::FollowJointTrajectoryAction>;
  using GoalHandle = Server::GoalHandle;
  using Result = tavclient_ros::FollowJointTrajectoryResult;

  struct Runner {
    std::thread thread;
    std::shared_ptr<std::atomic<bool>> done;
  };

  void _onGoal(GoalHandle goal);
  void _onCancel(GoalHandle goal);
  // Builds the library's request from the goal, or fills `result` with why it cannot be.
  bool _translate(const tavclient_ros::FollowJointTrajectoryGoal& goal,
                  tavclient::JointTrajectory& trajectory, tavclient::FollowTolerances& tolerances,
                  Result& result) const;
  void _follow(GoalHandle goal, tavclient::JointTrajectory trajectory,
               tavclient::FollowTolerances tolerances);
  void _finish(GoalHandle& goal, const tavclient::FollowResult& outcome);

  std::shared_ptr<tavclient::SharedRobot> robot;
  const SessionKeeper& keeper;
  const JointNames& names;
  const DriverOptions options;
  tavclient::TrajectoryFollower follower;

  mutable std::mutex mutex;
  std::string current;          // the newest accepted goal's id, under mutex
  bool cancelCurrent = false;   // under mutex: the newest goal is to end
  std::vector<Runner> runners;  // under mutex
  std::atomic<std::uint64_t> finished{0};

  Server server;  // last: its callbacks use everything above
};

}  // namespace tavdriver

#endif
