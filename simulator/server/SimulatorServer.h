#ifndef TAVSIM_SERVER_SIMULATORSERVER_H
#define TAVSIM_SERVER_SIMULATORSERVER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "model/SimulatedController.h"
#include "server/ActivityFeed.h"
#include "server/Fault.h"
#include "server/FaultInjector.h"
#include "server/LiveView.h"
#include "server/ServerOptions.h"

namespace tavsim {

class ServerLoop;

// A simulated controller serving the client library's wire protocol over TCP, started in the
// calling process. It listens as soon as it is constructed and serves any number of clients,
// each on its own connection, all driving one simulated arm. Every request is answered as
// soon as it can be: a pending wait_for_motors holds up neither the heart reply nor other
// commands.
//
//   tavsim::SimulatorServer simulator;                  // 127.0.0.1, a free port
//   robot.RobotLogin("127.0.0.1", static_cast<short>(simulator.Port()));
//   simulator.Faults().Add(tavsim::Fault::DropReply("get_position"));
//
// Destruction (or Stop) closes the listener and every connection and joins the thread.
class SimulatorServer {
public:
  // Throws std::system_error when it cannot listen (address in use, bad host).
  explicit SimulatorServer(ServerOptions options = {});
  ~SimulatorServer();
  SimulatorServer(const SimulatorServer&) = delete;
  SimulatorServer& operator=(const SimulatorServer&) = delete;

  const std::string& Host() const { return host; }
  std::uint16_t Port() const { return port; }
  // The live view's port while it serves; nothing without a view.
  std::optional<std::uint16_t> ViewPort() const;
  // Client connections open now.
  std::size_t ConnectionCount() const;

  // Rules that change the replies sent from now on; see Fault.
  FaultInjector& Faults() { return faults; }
  const SimulatedController& Controller() const { return *controller; }

  // Looks at the controller's clock again at once: call after advancing a ManualClock.
  void Wake();
  // Closes every connection and the listener and joins the thread. Idempotent; the
  // destructor calls it. Call it (and destroy the server) from the thread that owns it.
  void Stop();

private:
  std::string host;
  std::unique_ptr<SimulatedController> controller;
  FaultInjector faults;
  std::shared_ptr<ActivityFeed> activity;  // for the view only
  std::unique_ptr<ServerLoop> loop;
  std::uint16_t port;
  std::unique_ptr<LiveView> view;
  std::thread thread;
};

}  // namespace tavsim

#endif
