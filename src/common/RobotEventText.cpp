#include "common/RobotEventText.h"

#include <cstdio>

const char* RobotEventText(Robot_Event code) {
  using namespace RobotEvents;
  switch (code) {
    case kSuccess:
      return "success";
    case kSendFailed:
      return "sending to the controller failed, or the session is not logged in";
    case kReceiveFailed:
      return "the connection was closed or receiving failed";
    case kNoReplyYet:
      return "no reply of that name has arrived yet";
    case kNoCompleteMessage:
      return "no complete message in the receive buffer";
    case kDecodeFailed:
      return "a message from the controller could not be read";
    case kReplyTimeout:
      return "no reply within the reply time-out";
    case kControllerSilent:
      return "the controller fell silent";
    case kSocketSetupFailed:
      return "the socket could not be made or the address is not IPv4";
    case kConnectFailed:
      return "connecting to the controller failed";
    case kResourceFailed:
      return "a directory, the properties file or one of its keys is unusable";
    case kInvalidArgument:
      return "an argument was refused (null, or a setting out of range; the previous one is kept)";
    // The controller's own codes: command outcomes, then problems with a message as such.
    case 2001011:
      return "the controller does not know the command";
    case 2001021:
      return "a parameter is missing, malformed or out of range";
    case 2001031:
      return "unknown motor or I/O channel id";
    case 2001041:
      return "pose or path unreachable, out of joint range, through a singularity, below the floor "
             "or folding the arm";
    case 2001051:
      return "refused in the controller's current state";
    case 2001061:
      return "the move names a released motor";
    case 2001071:
      return "unknown tool or tool action";
    case 2001081:
      return "the wait ended because the motion was halted";
    case 2002011:
      return "the controller could not read a message";
    case 2002021:
      return "the controller found a checksum mismatch; the command was not run";
    case 2002091:
      return "an error injected to rehearse a failure";
    default:
      break;
  }
  thread_local char unknown[32];
  std::snprintf(unknown, sizeof unknown, "unknown event %d", code);
  return unknown;
}
