#ifndef TAVSIM_SERVER_SERVEROPTIONS_H
#define TAVSIM_SERVER_SERVEROPTIONS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "model/Clock.h"
#include "model/SimulatedController.h"
#include "server/RequestHandler.h"

namespace tavsim {

struct ServerOptions {
  // Where to listen: an IPv4 address in dotted form and a TCP port (0: the system picks one;
  // SimulatorServer::Port() tells which).
  std::string host = "127.0.0.1";
  std::uint16_t port = 0;
  // The simulated arm: motor count, outputs, start angles.
  ControllerOptions controller;
  // The controller's time source; a ManualClock makes motion deterministic (then call
  // SimulatorServer::Wake() after advancing it).
  std::shared_ptr<const Clock> clock = std::make_shared<SteadyClock>();
  // A client that sends this much without ending a message gets an Error and is cut off.
  std::size_t maxMessageBytes = 64 * 1024;
  // One line per connection event and per command; nothing when empty.
  LogSink log;
  // Serve the live view over HTTP on this port of `host` (0: a free one; see
  // SimulatorServer::ViewPort()): a page that draws the arm, and its state as JSON. Off when
  // empty.
  std::optional<std::uint16_t> view;
};

}  // namespace tavsim

#endif
