#include "SimulatorBinding.h"

#include <pybind11/stl.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "server/CommandLine.h"
#include "server/SimulatorServer.h"

namespace py = pybind11;
using namespace pybind11::literals;

namespace tavpy {

namespace {

tavsim::Fault ReadFault(const std::string& rule) {
  std::string problem;
  std::optional<tavsim::Fault> fault = tavsim::ParseFault(rule, problem);
  if (!fault) {
    throw py::value_error("fault " + rule + ": " + problem);
  }
  return *fault;
}

// The server's activity lines (connections, commands, faults applied), the latest kept.
class ActivityLines {
public:
  static constexpr std::size_t kKept = 1000;

  void Add(const std::string& line) {
    {
      std::lock_guard<std::mutex> lock(mutex);
      lines.push_back(line);
      if (lines.size() > kKept) {
        lines.pop_front();
      }
    }
    added.notify_all();
  }
  std::vector<std::string> All() const {
    std::lock_guard<std::mutex> lock(mutex);
    return {lines.begin(), lines.end()};
  }
  // Without the GIL.
  bool WaitFor(const std::string& text, double seconds) const {
    std::unique_lock<std::mutex> lock(mutex);
    return added.wait_for(lock, std::chrono::duration<double>(seconds), [&] {
      for (const std::string& line : lines) {
        if (line.find(text) != std::string::npos) {
          return true;
        }
      }
      return false;
    });
  }

private:
  mutable std::mutex mutex;
  mutable std::condition_variable added;
  std::deque<std::string> lines;
};

// Owns the server; stopping joins its thread, which never needs the GIL.
class Simulator {
public:
  Simulator(int port, int motors, const std::vector<std::string>& faults, std::optional<int> view) {
    if (port < 0 || port > 65535) {
      throw py::value_error("port: expected 0 to 65535, got " + std::to_string(port));
    }
    if (view && (*view < 0 || *view > 65535)) {
      throw py::value_error("view: expected 0 to 65535, got " + std::to_string(*view));
    }
    if (motors < 1 || motors > static_cast<int>(tavsim::CommandLine::kMaxMotors)) {
      throw py::value_error("motors: expected 1 to " +
                            std::to_string(tavsim::CommandLine::kMaxMotors));
    }
    std::vector<tavsim::Fault> rules;
    for (const std::string& rule : faults) {
      rules.push_back(ReadFault(rule));
    }
    tavsim::ServerOptions options;
    options.port = static_cast<std::uint16_t>(port);
    options.controller.motorCount = static_cast<std::size_t>(motors);
    if (view) {
      options.view = static_cast<std::uint16_t>(*view);
    }
    options.log = [log = activity](const std::string& line) { log->Add(line); };
    try {
      server = std::make_unique<tavsim::SimulatorServer>(options);
    } catch (const std::system_error& error) {
      PyErr_SetString(PyExc_OSError, error.what());
      throw py::error_already_set();
    }
    for (const tavsim::Fault& rule : rules) {
      server->Faults().Add(rule);
    }
  }
  ~Simulator() { Stop(); }

  int Port() const { return server->Port(); }
  std::optional<std::uint16_t> ViewPort() const { return server->ViewPort(); }
  const std::string& Host() const { return server->Host(); }
  void AddFault(const std::string& rule) { server->Faults().Add(ReadFault(rule)); }
  std::vector<std::string> Activity() const { return activity->All(); }
  bool WaitForActivity(const std::string& text, double seconds) const {
    py::gil_scoped_release release;
    return activity->WaitFor(text, seconds);
  }
  void Stop() {
    py::gil_scoped_release release;
    server->Stop();
  }

private:
  std::shared_ptr<ActivityLines> activity = std::make_shared<ActivityLines>();
  std::unique_ptr<tavsim::SimulatorServer> server;
};

}  // namespace

void BindSimulator(py::module_& module) {
  py::class_<Simulator>(module, "Simulator",
                        "A simulated controller served from this process on 127.0.0.1, until "
                        "stop() or the end of its with block.")
      .def(py::init<int, int, const std::vector<std::string>&, std::optional<int>>(), "port"_a = 0,
           "motors"_a = 6, "faults"_a = std::vector<std::string>(), "view"_a = py::none(),
           "port 0 lets the system pick; motors 1 to 10; faults are rules as the tavsim "
           "program's --fault takes them, e.g. 'delay,on=get_angles,ms=500'; view, a port "
           "(0: a free one), also serves the live view there over HTTP (RuntimeError in a "
           "build without it).")
      .def_property_readonly("port", &Simulator::Port, "The TCP port it listens on.")
      .def_property_readonly("host", &Simulator::Host, "The address it listens on.")
      .def_property_readonly("view_port", &Simulator::ViewPort,
                             "The live view's port (http://host:view_port/), None without a view.")
      .def("add_fault", &Simulator::AddFault, "rule"_a,
           "Changes some replies from now on; a rule as --fault takes it.")
      .def_property_readonly("activity", &Simulator::Activity,
                             "The latest lines of what it did: connections, commands, faults.")
      .def("wait_for_activity", &Simulator::WaitForActivity, "text"_a, "timeout"_a = 10.0,
           "Waits up to timeout seconds for an activity line containing text; True if one came.")
      .def("stop", &Simulator::Stop, "Closes every connection and the listener.")
      .def("__enter__", [](py::object self) { return self; })
      .def("__exit__", [](Simulator& simulator, const py::args&) { simulator.Stop(); });
}

}  // namespace tavpy
