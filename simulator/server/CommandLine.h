#ifndef TAVSIM_SERVER_COMMANDLINE_H
#define TAVSIM_SERVER_COMMANDLINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "server/Fault.h"
#include "server/ServerOptions.h"

namespace tavsim {

// What the simulator's command-line program was asked to do.
struct CommandLine {
  static constexpr std::uint16_t kDefaultPort = 9760;
  static constexpr std::size_t kMaxMotors = 10;  // the client discovers at most ten

  std::string host = "127.0.0.1";
  std::uint16_t port = kDefaultPort;
  std::size_t motors = 6;
  std::vector<Fault> faults;
  // Floor and elbow folding; the ceilings stay those of the arm.
  ArmLimits limits;
  std::optional<std::uint16_t> view;
  bool quiet = false;
  bool help = false;
};

// Nothing, with `problem` set, for an unknown option or a bad value.
std::optional<CommandLine> ParseCommandLine(const std::vector<std::string>& arguments,
                                            std::string& problem);

// The --help text.
std::string Usage(const std::string& program);

}  // namespace tavsim

#endif
