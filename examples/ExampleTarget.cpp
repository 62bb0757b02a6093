#include "ExampleTarget.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "server/SimulatorServer.h"

ExampleTarget::ExampleTarget(int argc, char** argv) {
  if (argc == 1) {
    simulator_ = std::make_unique<tavsim::SimulatorServer>();
    host_ = simulator_->Host();
    port_ = static_cast<short>(simulator_->Port());
    return;
  }
  char* end = nullptr;
  const long port = argc == 3 ? std::strtol(argv[2], &end, 10) : 0;
  if (argc != 3 || *end != '\0' || port <= 0 || port > 65535) {
    std::fprintf(stderr,
                 "Usage: %s [HOST PORT]\n"
                 "With no arguments it starts a controller simulator in its own process.\n",
                 argv[0]);
    std::exit(2);
  }
  host_ = argv[1];
  // The library takes the port as a short: ports above 32767 travel as their bit pattern.
  port_ = static_cast<short>(port);
}

ExampleTarget::~ExampleTarget() = default;

std::string ExampleTarget::Describe() const {
  const std::string address = host_ + ":" + std::to_string(static_cast<unsigned short>(port_));
  return Simulated() ? "the simulator in this process, " + address : "the controller at " + address;
}
