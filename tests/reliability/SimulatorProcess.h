#ifndef TAVTEST_RELIABILITY_SIMULATORPROCESS_H
#define TAVTEST_RELIABILITY_SIMULATORPROCESS_H

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "core/UniqueFd.h"

namespace tavtest {

// The simulator program as a child process, started as a user starts it, on a port the system
// picks (--port 0), with its output read through a pipe. A child still running when the object
// goes is killed and reaped.
class SimulatorProcess {
public:
  // Starts `program` with `options` and waits until it prints the port it listens on; throws
  // std::runtime_error when it cannot be started or prints no port in time.
  SimulatorProcess(const std::string& program, const std::vector<std::string>& options);
  ~SimulatorProcess();
  SimulatorProcess(const SimulatorProcess&) = delete;
  SimulatorProcess& operator=(const SimulatorProcess&) = delete;

  std::uint16_t Port() const { return port; }
  // Waits until the program has printed `text`; false when it has not within `wait`.
  bool WaitForOutput(const std::string& text, std::chrono::milliseconds wait);
  // SIGKILL, as an out-of-memory killer or a power cut ends a controller; reaps the child.
  void Kill();
  // Sends `number` to the running child: SIGSTOP and SIGCONT freeze and thaw a controller.
  void Signal(int number);

private:
  pid_t pid = -1;
  tavsim::UniqueFd output;
  std::string printed;
  std::uint16_t port = 0;
};

}  // namespace tavtest

#endif
