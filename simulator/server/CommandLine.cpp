#include "server/CommandLine.h"

#include <charconv>

namespace tavsim {

namespace {

template <typename Number>
bool ReadNumber(const std::string& text, Number lowest, Number highest, Number& out) {
  Number value{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end || value < lowest || value > highest) {
    return false;
  }
  out = value;
  return true;
}

// Applies `option` with its `value`; false with `problem` set when either is bad.
bool Apply(CommandLine& line, const std::string& option, const std::string& value,
           std::string& problem) {
  bool ok = true;
  if (option == "--host") {
    line.host = value;
  } else if (option == "--port") {
    ok = ReadNumber<std::uint16_t>(value, 0, 65535, line.port);
  } else if (option == "--motors") {
    ok = ReadNumber<std::size_t>(value, 1, CommandLine::kMaxMotors, line.motors);
  } else if (option == "--floor") {
    double height = 0.0;
    ok = ReadNumber<double>(value, -10.0, 10.0, height);
    line.limits.floor = height;
  } else if (option == "--fold-limit") {
    ok = ReadNumber<double>(value, 0.0, 180.0, line.limits.foldLimit);
  } else if (option == "--view") {
    ok = ReadNumber<std::uint16_t>(value, 0, 65535, line.view.emplace());
  } else if (option == "--fault") {
    std::optional<Fault> fault = ParseFault(value, problem);
    if (!fault) {
      problem = "--fault " + value + ": " + problem;
      return false;
    }
    line.faults.push_back(*fault);
  }
  if (!ok) {
    problem = "bad value for " + option + ": '" + value + "'";
  }
  return ok;
}

}  // namespace

std::optional<CommandLine> ParseCommandLine(const std::vector<std::string>& arguments,
                                            std::string& problem) {
  CommandLine line;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& option = arguments[i];
    if (option == "--help" || option == "-h") {
      line.help = true;
    } else if (option == "--quiet") {
      line.quiet = true;
    } else if (option == "--no-floor") {
      line.limits.floor.reset();
    } else if (option == "--host" || option == "--port" || option == "--motors" ||
               option == "--fault" || option == "--view" || option == "--floor" ||
               option == "--fold-limit") {
      if (i + 1 == arguments.size()) {
        problem = option + " needs a value";
        return std::nullopt;
      }
      if (!Apply(line, option, arguments[++i], problem)) {
        return std::nullopt;
      }
    } else {
      problem = "unknown option '" + option + "'";
      return std::nullopt;
    }
  }
  return line;
}

std::string Usage(const std::string& program) {
  return "Usage: " + program +
         " [--host ADDRESS] [--port PORT] [--motors N] [--fault RULE]... [--view PORT]\n"
         "       [--floor Z | --no-floor] [--fold-limit DEG] [--quiet]\n"
         "\n"
         "A simulated robot-arm controller for the tavclient library: a six-axis arm behind the\n"
         "controller's wire protocol. Point an application at it with RobotLogin(ADDRESS, PORT).\n"
         "Ctrl-C stops it.\n"
         "\n"
         "  --host ADDRESS  IPv4 address to listen on (default 127.0.0.1)\n"
         "  --port PORT     TCP port (default " +
         std::to_string(CommandLine::kDefaultPort) +
         "; 0 lets the system pick)\n"
         "  --motors N      motors 1..N, of which 1..6 form the arm (default 6, at most " +
         std::to_string(CommandLine::kMaxMotors) +
         ")\n"
         "  --floor Z       refuse motions that take the tool or a joint below z = Z metres in "
         "the\n"
         "                  base frame (default 0: the plane the arm stands on)\n"
         "  --no-floor      no floor\n"
         "  --fold-limit DEG  refuse postures with the elbow within DEG of +-180 degrees\n"
         "                  (default 20; 0: no check)\n"
         "  --fault RULE    change some replies, to rehearse failures (repeatable):\n"
         "                  KIND[,on=NAME][,times=N|all][,after=N][,ms=N][,pieces=N][,text=TEXT]\n"
         "                  KIND: delay (ms, default 1000), drop, error (text = error code),\n"
         "                  garbage (text = bytes sent instead), checksum (off by one),\n"
         "                  split (pieces, default 2, ms apart, default 20), close (the "
         "connection)\n"
         "                  NAME: heart, ClientInfo or a command's wire name (get_angles...); "
         "default any reply\n"
         "                  e.g. --fault delay,on=get_angles,ms=500  --fault "
         "close,on=heart,after=2\n"
         "  --view PORT     serve the live view on http://ADDRESS:PORT/ (0 lets the system pick):\n"
         "                  the arm in 3D, plots of its joints, I/O, gripper, recent commands\n"
         "  --quiet         log nothing but start and stop\n"
         "  --help          show this text\n";
}

}  // namespace tavsim
