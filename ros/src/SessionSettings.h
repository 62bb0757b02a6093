#ifndef TAVDRIVER_SESSIONSETTINGS_H
#define TAVDRIVER_SESSIONSETTINGS_H

#include <string>

#include "Robot.h"

namespace tavdriver {

// Where the controller is and how to set its channel up, with the session's bounds. The texts
// are owned here; Record() lends them to the library's Setup_Param.
struct SessionSettings {
  std::string ip = "127.0.0.1";
  int port = 9760;
  std::string name = "arm";  // the robot's name on the controller
  std::string channelName = "can0";
  std::string channelType = "can";
  std::string protocol = "canopen";
  int hostId = 1;
  int baudRate = 500000;
  Setup_Mode mode = Setup_Mode::Real;
  double replyTimeout = 2.0;     // seconds a reply may take
  double heartbeatPeriod = 1.0;  // seconds between heartbeats
  double silenceLimit = 3.0;     // seconds of silence that fail the session
  double retryPeriod = 0.5;      // seconds between attempts to reach the controller

  Setup_Param Record() const {
    return {channelName.c_str(), channelType.c_str(), protocol.c_str(), hostId, baudRate};
  }
  std::string Address() const { return ip + ":" + std::to_string(port); }
};

}  // namespace tavdriver

#endif
