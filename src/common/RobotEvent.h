#ifndef TAVCLIENT_COMMON_ROBOTEVENT_H
#define TAVCLIENT_COMMON_ROBOTEVENT_H

#include <cstdint>

// A status or event code: 0 is success, the library's own codes have seven digits,
// and the controller's codes arrive as decimal text and pass through unchanged.
typedef int32_t Robot_Event;

namespace RobotEvents {
constexpr Robot_Event kSuccess = 0;
constexpr Robot_Event kSendFailed = 1001011;         // send on the socket failed
constexpr Robot_Event kReceiveFailed = 1002011;      // recv failed or the peer closed
constexpr Robot_Event kNoReplyYet = 1002021;         // no reply of that name in the store
constexpr Robot_Event kNoCompleteMessage = 1003011;  // the stream holds no whole message
constexpr Robot_Event kDecodeFailed = 1003021;       // an inbound text could not be read
constexpr Robot_Event kReplyTimeout = 1003031;       // no reply within the reply time-out
constexpr Robot_Event kControllerSilent = 1003041;   // nothing arrived for the silence limit
constexpr Robot_Event kSocketSetupFailed = 1004011;  // socket() failed or the address is bad
constexpr Robot_Event kConnectFailed = 1004021;      // connect() failed
constexpr Robot_Event kResourceFailed = 1005011;     // directory, properties file or key
// A setting refused (SetReplyTimeout, SetHeartbeat, SetLogLevel; the previous one is kept), or a
// null pointer where values are needed.
constexpr Robot_Event kInvalidArgument = 1006011;

// Every code above, so that whatever must cover them all (their texts) can walk them.
constexpr Robot_Event kLibraryCodes[] = {kSuccess,       kSendFailed,        kReceiveFailed,
                                         kNoReplyYet,    kNoCompleteMessage, kDecodeFailed,
                                         kReplyTimeout,  kControllerSilent,  kSocketSetupFailed,
                                         kConnectFailed, kResourceFailed,    kInvalidArgument};
}  // namespace RobotEvents

#endif
