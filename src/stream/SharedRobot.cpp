#include "SharedRobot.h"

#include <mutex>

namespace tavclient {

SharedRobot::SharedRobot(std::shared_ptr<Robot> shared) : robot(std::move(shared)) {}

int SharedRobot::Connect(const std::string& ip, int port, const std::string& name,
                         const Setup_Param& param, Setup_Mode mode) {
  // A call waiting on the old session holds the shared lock: the logout releases it first.
  robot->RobotLogout();
  std::unique_lock<std::shared_mutex> lock(sessionMutex);
  int code = robot->RobotLogin(ip.c_str(), static_cast<short>(port));
  if (code == 0) {
    code = robot->Setup(name.c_str(), param, mode);
  }
  return code;
}

int SharedRobot::Disconnect() { return robot->RobotLogout(); }

}  // namespace tavclient
