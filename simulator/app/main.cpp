// The controller simulator as a program: serves the client library's wire protocol until
// interrupted.
#include <pthread.h>
#include <signal.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <iostream>
#include <mutex>
#include <string>
#include <vector>

#include "server/CommandLine.h"
#include "server/SimulatorServer.h"

namespace {

std::string ClockTime() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto millis =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min, local.tm_sec,
                static_cast<int>(millis));
  return text;
}

// Called from the server's thread and from main.
void PrintLine(const std::string& line) {
  static std::mutex output;
  std::lock_guard<std::mutex> lock(output);
  std::cout << ClockTime() << ' ' << line << std::endl;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string program = "tavsim";
  std::string problem;
  const std::optional<tavsim::CommandLine> line =
      tavsim::ParseCommandLine(std::vector<std::string>(argv + 1, argv + argc), problem);
  if (!line) {
    std::cerr << program << ": " << problem << "\n\n" << tavsim::Usage(program);
    return 2;
  }
  if (line->help) {
    std::cout << tavsim::Usage(program);
    return 0;
  }

  // Ctrl-C and kill are taken by sigwait below; the server's thread inherits the mask.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  // A shell without job control starts background programs with SIGINT ignored, and an
  // ignored signal never reaches sigwait.
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);

  tavsim::ServerOptions options;
  options.host = line->host;
  options.port = line->port;
  options.controller.motorCount = line->motors;
  options.controller.limits = line->limits;
  options.view = line->view;
  if (!line->quiet) {
    options.log = PrintLine;
  }
  try {
    tavsim::SimulatorServer simulator(options);
    for (const tavsim::Fault& fault : line->faults) {
      simulator.Faults().Add(fault);
      PrintLine("fault rule: " + tavsim::Describe(fault));
    }
    PrintLine(program + ": simulated controller with " + std::to_string(line->motors) +
              " motors listening on " + simulator.Host() + ":" + std::to_string(simulator.Port()) +
              " (Ctrl-C stops it)");
    if (const std::optional<std::uint16_t> view = simulator.ViewPort()) {
      PrintLine(program + ": live view on http://" + simulator.Host() + ":" +
                std::to_string(*view) + "/");
    }
    int received = 0;
    sigwait(&stopSignals, &received);
    simulator.Stop();
    PrintLine(program + ": stopped");
  } catch (const std::exception& error) {
    std::cerr << program << ": cannot serve on " << line->host << ":" << line->port << ": "
              << error.what() << "\n";
    return 1;
  }
  return 0;
}
