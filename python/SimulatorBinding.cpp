#include "SimulatorBinding.h"

#include <pybind11/stl.h>

#include <memory>
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

// Owns the server; stopping joins its thread, which never needs the GIL.
class Simulator {
public:
  Simulator(int port, int motors, const std::vector<std::string>& faults) {
    if (port < 0 || port > 65535) {
      throw py::value_error("port: expected 0 to 65535, got " + std::to_string(port));
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
  const std::string& Host() const { return server->Host(); }
  void AddFault(const std::string& rule) { server->Faults().Add(ReadFault(rule)); }
  void Stop() {
    py::gil_scoped_release release;
    server->Stop();
  }

private:
  std::unique_ptr<tavsim::SimulatorServer> server;
};

}  // namespace

void BindSimulator(py::module_& module) {
  py::class_<Simulator>(module, "Simulator",
                        "A simulated controller served from this process on 127.0.0.1, until "
                        "stop() or the end of its with block.")
      .def(py::init<int, int, const std::vector<std::string>&>(), "port"_a = 0, "motors"_a = 6,
           "faults"_a = std::vector<std::string>(),
           "port 0 lets the system pick; motors 1 to 10; faults are rules as the tavsim "
           "program's --fault takes them, e.g. 'delay,on=get_angles,ms=500'.")
      .def_property_readonly("port", &Simulator::Port, "The TCP port it listens on.")
      .def_property_readonly("host", &Simulator::Host, "The address it listens on.")
      .def("add_fault", &Simulator::AddFault, "rule"_a,
           "Changes some replies from now on; a rule as --fault takes it.")
      .def("stop", &Simulator::Stop, "Closes every connection and the listener.")
      .def("__enter__", [](py::object self) { return self; })
      .def("__exit__", [](Simulator& simulator, const py::args&) { simulator.Stop(); });
}

}  // namespace tavpy
