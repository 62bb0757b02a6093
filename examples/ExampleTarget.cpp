#include "ExampleTarget.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

#include "server/SimulatorServer.h"

namespace {

// The simulator's options, with the live view when TAVSIM_VIEW names its port.
tavsim::ServerOptions SimulatorOptions() {
  tavsim::ServerOptions options;
  const char* view = std::getenv("TAVSIM_VIEW");
  if (view == nullptr || *view == '\0') {
    return options;
  }
  char* end = nullptr;
  const long port = std::strtol(view, &end, 10);
  if (*end != '\0' || port < 0 || port > 65535) {
    std::fprintf(stderr, "TAVSIM_VIEW: expected a port, 0 to 65535 (0: a free one), got '%s'\n",
                 view);
    std::exit(2);
  }
  options.view = static_cast<std::uint16_t>(port);
  return options;
}

}  // namespace

ExampleTarget::ExampleTarget(int argc, char** argv) {
  if (argc == 1) {
    try {
      simulator_ = std::make_unique<tavsim::SimulatorServer>(SimulatorOptions());
    } catch (const std::exception& error) {
      std::fprintf(stderr, "cannot start the simulator: %s\n", error.what());
      std::exit(1);
    }
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

std::string ExampleTarget::ViewAddress() const {
  const std::optional<std::uint16_t> port = simulator_ ? simulator_->ViewPort() : std::nullopt;
  return port ? "http://" + host_ + ":" + std::to_string(*port) + "/" : "";
}

std::string ExampleTarget::Describe() const {
  const std::string address = host_ + ":" + std::to_string(static_cast<unsigned short>(port_));
  return Simulated() ? "the simulator in this process, " + address : "the controller at " + address;
}
