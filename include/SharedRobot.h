#ifndef TAVCLIENT_SHAREDROBOT_H
#define TAVCLIENT_SHAREDROBOT_H

#include <memory>
#include <shared_mutex>
#include <string>
#include <utility>

#include "Robot.h"

namespace tavclient {

/// One arm's Robot, shared by the application, its state monitors and its trajectory
/// followers. A Robot's commands may run side by side, but RobotLogin and Setup must run
/// alone: Use() runs commands side by side, Connect() runs alone.
///
/// Nothing here reconnects by itself. An application (or a driver) that rides out controller
/// restarts calls Connect() again until it returns 0; monitors and followers go on meanwhile
/// and pick the session up as soon as their queries succeed again.
class SharedRobot {
public:
  /// Shares `robot`, or a new Robot.
  explicit SharedRobot(std::shared_ptr<Robot> robot = std::make_shared<Robot>());

  /// Logs in to `ip`:`port` and sets the channel up (Robot::RobotLogin, then Robot::Setup),
  /// while no other call runs. The previous session is logged out first, so that calls still
  /// waiting on it end at once and Connect never waits for them. Returns the first non-zero
  /// code.
  int Connect(const std::string& ip, int port, const std::string& name, const Setup_Param& param,
              Setup_Mode mode);
  /// Robot::RobotLogout, from any thread: waiting calls end at once with 1002011.
  int Disconnect();

  /// Runs `call(robot)` beside other calls, never during Connect, and returns what it returns.
  template <typename Call>
  decltype(auto) Use(Call&& call) {
    std::shared_lock<std::shared_mutex> lock(sessionMutex);
    return std::forward<Call>(call)(*robot);
  }

  /// Runs `call(robot)` while no other call runs, as Connect does (for a RobotLogin or a Setup
  /// of the application's own), and returns what it returns. Calls waiting on the session hold
  /// it up: log out first to release them.
  template <typename Call>
  decltype(auto) Alone(Call&& call) {
    std::unique_lock<std::shared_mutex> lock(sessionMutex);
    return std::forward<Call>(call)(*robot);
  }

  /// The Robot itself, for its settings (SetReplyTimeout, SetHeartbeat, SetEventCallback);
  /// commands go through Use().
  Robot& Get() { return *robot; }

private:
  std::shared_ptr<Robot> robot;
  std::shared_mutex sessionMutex;
};

}  // namespace tavclient

#endif
