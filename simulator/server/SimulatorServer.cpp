#include "server/SimulatorServer.h"

#include <utility>

#include "server/ServerLoop.h"

namespace tavsim {

SimulatorServer::SimulatorServer(ServerOptions options)
    : host_(options.host),
      controller_(std::make_unique<SimulatedController>(options.controller, options.clock)),
      loop_(std::make_unique<ServerLoop>(options, *controller_, faults_)),
      port_(loop_->Port()),
      thread_([this] { loop_->Run(); }) {}

SimulatorServer::~SimulatorServer() {
  Stop();
}

std::size_t SimulatorServer::ConnectionCount() const {
  return loop_ ? loop_->ConnectionCount() : 0;
}

void SimulatorServer::Wake() {
  if (loop_) {
    loop_->Wake();
  }
}

void SimulatorServer::Stop() {
  if (thread_.joinable()) {
    loop_->Stop();
    thread_.join();
  }
  loop_.reset();  // closes the listener
}

}  // namespace tavsim
