#ifndef TAVCLIENT_CLIENT_CONNECTIONEVENTS_H
#define TAVCLIENT_CLIENT_CONNECTIONEVENTS_H

#include <chrono>
#include <cstdint>

#include "../common/RobotEvent.h"

// What a session's workers tell the session. Every report names the connection the worker
// was loaded with (a number the session gives each connection), so the session can ignore
// what comes from a connection that has already gone.
class ConnectionEvents {
public:
  using Clock = std::chrono::steady_clock;

  // `event` happened on `connection`: a failed write or read, a message that cannot be read,
  // an error message from the controller, the controller's silence.
  virtual void _eventCallback(std::uint64_t connection, Robot_Event event) = 0;
  // A heartbeat is due.
  virtual void _heartCallback() = 0;
  // When anything last arrived from the controller.
  virtual Clock::time_point _lastHeard() = 0;

protected:
  ~ConnectionEvents() = default;
};

#endif
