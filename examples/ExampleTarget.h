#ifndef TAVCLIENT_EXAMPLES_EXAMPLETARGET_H
#define TAVCLIENT_EXAMPLES_EXAMPLETARGET_H

#include <memory>
#include <string>

namespace tavsim {
class SimulatorServer;
}

// Where an example connects: the controller named on its command line ("HOST PORT"), or,
// with no arguments, a controller simulator started inside the example's own process; with
// TAVSIM_VIEW=PORT in the environment that simulator serves its live view on PORT.
// Copying an example into an application, replace this with your controller's address.
class ExampleTarget {
public:
  // Exits with a usage message for arguments that are neither empty nor HOST PORT.
  ExampleTarget(int argc, char** argv);
  ~ExampleTarget();

  const char* Host() const { return host_.c_str(); }
  short Port() const { return port_; }
  bool Simulated() const { return simulator_ != nullptr; }
  // "the simulator in this process, 127.0.0.1:40123" or "the controller at HOST:PORT".
  std::string Describe() const;
  // "http://127.0.0.1:PORT/" when the simulator serves its live view, else empty.
  std::string ViewAddress() const;
  // The simulator started for this example; null when talking to a real controller.
  tavsim::SimulatorServer* Simulator() const { return simulator_.get(); }

private:
  std::unique_ptr<tavsim::SimulatorServer> simulator_;
  std::string host_;
  short port_ = 0;
};

#endif
