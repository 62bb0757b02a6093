#ifndef TAVCLIENT_PYTHON_MONITORHANDLE_H
#define TAVCLIENT_PYTHON_MONITORHANDLE_H

#include <pybind11/pybind11.h>
#include <tavclient/StateMonitor.h>

#include <memory>
#include <utility>

namespace tavpy {

// What a tavclient.StateMonitor holds. The monitor's threads may be calling into Python: it
// goes with the GIL released.
class MonitorHandle {
public:
  explicit MonitorHandle(std::shared_ptr<tavclient::StateMonitor> made)
      : monitor(std::move(made)) {}
  ~MonitorHandle() {
    pybind11::gil_scoped_release release;
    monitor.reset();
  }
  MonitorHandle(const MonitorHandle&) = delete;
  MonitorHandle& operator=(const MonitorHandle&) = delete;

  tavclient::StateMonitor& Get() { return *monitor; }
  const std::shared_ptr<tavclient::StateMonitor>& Shared() const { return monitor; }

private:
  std::shared_ptr<tavclient::StateMonitor> monitor;
};

}  // namespace tavpy

#endif
