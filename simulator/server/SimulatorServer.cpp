#include "server/SimulatorServer.h"

#include <utility>

#include "server/ServerLoop.h"

namespace tavsim {

SimulatorServer::SimulatorServer(ServerOptions options)
    : host(options.host),
      controller(std::make_unique<SimulatedController>(options.controller, options.clock)),
      loop(std::make_unique<ServerLoop>(options, *controller, faults)),
      port(loop->Port()),
      thread([this] { loop->Run(); }) {}

SimulatorServer::~SimulatorServer() { Stop(); }

std::size_t SimulatorServer::ConnectionCount() const { return loop ? loop->ConnectionCount() : 0; }

void SimulatorServer::Wake() {
  if (loop) {
    loop->Wake();
  }
}

void SimulatorServer::Stop() {
  if (thread.joinable()) {
    loop->Stop();
    thread.join();
  }
  loop.reset();  // closes the listener
}

}  // namespace tavsim
