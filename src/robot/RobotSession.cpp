#include <algorithm>
#include <string>

#include "Robot.h"
#include "common/TavUtils.h"
#include "robot/Arguments.h"
#include "robot/ParameterText.h"
#include "robot/ReplyText.h"

Robot::Robot() = default;

// A Robot still logged in is logged out by the Client's destructor.
Robot::~Robot() = default;

// Ends whatever session there was, connects, introduces the client and waits for the
// controller's verdict. A failure after the connect leaves the socket open; the caller decides
// whether to log out. The controller may be another one, or restarted: its motor ids are
// learned again at Setup.
int Robot::RobotLogin(const char* ip, short port) {
  motorIds.clear();
  clientId.clear();
  if (const int code = InitializeSocket(ip, port)) {
    return code;
  }

  const LocalSystemInfo info = GetLocalSystemInfo();
  Tasks clientInfo;
  clientInfo.type = Tasks::kSession;
  clientInfo.params = {{"identifier", "ClientInfo"},
                       {"version", info.version},
                       {"system", info.system},
                       {"language", info.language}};
  Reply reply;
  if (const int code = Exchange(clientInfo, "ConnResult", reply)) {
    return code;
  }
  if (const int code = GetRobotEvent(ReplyText::ValueOf(reply, "result"))) {
    return code;
  }
  GetClientIP(clientId);
  return 0;
}

// The cached motor ids and the client identifier survive a logout.
int Robot::RobotLogout() { return FinalizeSocket(); }

int Robot::Setup(const char* name, Setup_Param param, Setup_Mode mode) {
  if (name == nullptr || !Arguments::Complete(param)) {
    return RobotEvents::kInvalidArgument;
  }
  const int code = _command("Robot", {{"name", name},
                                      {"parameters", ParameterText::SetupParameters(param)},
                                      {"virtual", ParameterText::Integer(static_cast<int>(mode))}});
  if (code != 0) {
    return code;
  }
  return _getMotorIds();
}

// On any failure the cache keeps the ids of the last successful discovery.
int Robot::_getMotorIds() {
  Reply reply;
  if (const int code = _roundTrip("get_motor_ids", {}, reply)) {
    return code;
  }
  motorIds = ReplyText::MotorIdsIn(ReplyText::ValueOf(reply, "result1"));
  return 0;
}

int Robot::get_motor_ids(size_t& count, int* ids) {
  if (!Arguments::Holds(motorIds.size(), ids)) {
    return RobotEvents::kInvalidArgument;
  }
  count = motorIds.size();
  std::copy(motorIds.begin(), motorIds.end(), ids);
  return 0;
}

int Robot::get_motor_ids(std::vector<int>& ids) {
  ids = motorIds;
  return 0;
}
