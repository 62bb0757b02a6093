#include "StreamBinding.h"

#include <pybind11/stl.h>
#include <tavclient/StateMonitor.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "MonitorHandle.h"
#include "PythonCallback.h"
#include "RobotError.h"
#include "RobotSession.h"

namespace py = pybind11;
using namespace pybind11::literals;
using tavclient::StateField;
using tavclient::StateSample;

namespace tavpy {

namespace {

double Seconds(std::chrono::steady_clock::time_point time) {
  return std::chrono::duration<double>(time.time_since_epoch()).count();
}

double Seconds(std::chrono::system_clock::time_point time) {
  return std::chrono::duration<double>(time.time_since_epoch()).count();
}

void BindSample(py::module_& module) {
  py::enum_<StateField>(module, "StateField", "A quantity a state monitor reads.")
      .value("Angles", StateField::Angles, "joint positions, degrees")
      .value("Velocities", StateField::Velocities, "joint speeds, degrees per second")
      .value("Currents", StateField::Currents, "motor currents, amperes")
      .value("Inputs", StateField::Inputs, "digital inputs, 0 or 1")
      .value("Pose", StateField::Pose, "tool pose, metres and radians");
  py::class_<StateSample, std::shared_ptr<StateSample>>(
      module, "StateSample",
      "The arm's state at one instant. A field is fresh only when has(field); a field whose "
      "query failed is empty and code says why.")
      .def_readonly("sequence", &StateSample::sequence, "1, 2, ... in the order taken")
      .def_property_readonly(
          "time", [](const StateSample& s) { return Seconds(s.time); },
          "the instant the values stand for, seconds on the steady clock (time.monotonic())")
      .def_property_readonly(
          "wall_time", [](const StateSample& s) { return Seconds(s.wallTime); },
          "the same instant, seconds since the epoch (time.time())")
      .def_readonly("code", &StateSample::code, "0, or the code of the first failed query")
      .def(
          "has", [](const StateSample& s, StateField f) { return tavclient::Has(s.fresh, f); },
          "field"_a, "Whether the field was read in this sample's cycle.")
      .def_readonly("motor_ids", &StateSample::motorIds)
      .def_readonly("angles", &StateSample::angles, "degrees, one per motor id")
      .def_readonly("velocities", &StateSample::velocities, "degrees per second")
      .def_readonly("currents", &StateSample::currents, "amperes")
      .def_readonly("input_ids", &StateSample::inputIds)
      .def_readonly("inputs", &StateSample::inputs, "0 or 1, one per input id")
      .def_readonly("pose", &StateSample::pose, "metres and radians");
  py::class_<tavclient::MonitorStats>(module, "MonitorStats", "A monitor's counters since start().")
      .def_readonly("samples", &tavclient::MonitorStats::samples)
      .def_readonly("missed_cycles", &tavclient::MonitorStats::missedCycles)
      .def_readonly("failed_samples", &tavclient::MonitorStats::failedSamples)
      .def_readonly("dropped_deliveries", &tavclient::MonitorStats::droppedDeliveries)
      .def_readonly("recorded_rows", &tavclient::MonitorStats::recordedRows);
}

std::shared_ptr<MonitorHandle> MakeMonitor(RobotSession& robot, double rateHz,
                                           const std::vector<StateField>& fields,
                                           const std::vector<int>& inputIds) {
  tavclient::MonitorOptions options;
  options.rateHz = rateHz;
  options.fields = 0;
  for (StateField field : fields) {
    options.fields |= tavclient::Fields(field);
  }
  options.inputIds = inputIds;
  return std::make_shared<MonitorHandle>(
      std::make_shared<tavclient::StateMonitor>(robot.Shared(), options));
}

}  // namespace

void BindStreams(py::module_& module) {
  BindSample(module);
  py::class_<MonitorHandle, std::shared_ptr<MonitorHandle>>(
      module, "StateMonitor",
      "Samples one arm's state on a thread of its own at a steady rate: latest() returns the "
      "newest sample, subscribers are called with each on threads of their own, and a "
      "recording gets a CSV row per sample. It never logs in by itself: while the session is "
      "away samples carry its code, and they are fresh again once the robot has logged in and "
      "set up again.")
      .def(py::init(&MakeMonitor), "robot"_a, "rate_hz"_a = 100.0,
           "fields"_a = std::vector<StateField>{StateField::Angles, StateField::Velocities},
           "input_ids"_a = std::vector<int>{},
           "rate_hz from 1 to 500; fields to read; input_ids for StateField.Inputs (default 1 "
           "to 10). Does not start sampling yet.")
      .def("__enter__",
           [](py::object self) {
             Check(self.cast<MonitorHandle&>().Get().Start());
             return self;
           })
      .def(
          "__exit__",
          [](MonitorHandle& m, const py::args&) {
            py::gil_scoped_release release;
            m.Get().Stop();
          },
          "Stops sampling.")
      .def(
          "start", [](MonitorHandle& m) { Check(m.Get().Start()); },
          "Starts sampling; RobotError 1006011 for a rate outside 1 to 500 Hz or no field.")
      .def(
          "stop",
          [](MonitorHandle& m) {
            py::gil_scoped_release release;
            m.Get().Stop();
          },
          "Stops sampling within one period; subscribers stay for the next start().")
      .def_property_readonly("running", [](MonitorHandle& m) { return m.Get().Running(); })
      .def(
          "latest",
          [](MonitorHandle& m) -> std::shared_ptr<StateSample> {
            auto sample = m.Get().Latest();
            return sample ? std::make_shared<StateSample>(*sample) : nullptr;
          },
          "The newest sample, or None before the first.")
      .def(
          "wait_next",
          [](MonitorHandle& m, double timeout) -> std::shared_ptr<StateSample> {
            std::shared_ptr<const StateSample> sample;
            {
              py::gil_scoped_release release;
              sample = m.Get().WaitNext(std::chrono::duration_cast<std::chrono::milliseconds>(
                  std::chrono::duration<double>(timeout)));
            }
            return sample ? std::make_shared<StateSample>(*sample) : nullptr;
          },
          "timeout"_a = 1.0,
          "Waits up to timeout seconds for the next sample and returns it; None when none came "
          "in time or the monitor is not running.")
      .def(
          "subscribe",
          [](MonitorHandle& m, py::object callback) {
            if (!PyCallable_Check(callback.ptr())) {
              throw py::type_error("subscribe: expected a callable");
            }
            auto call =
                std::make_shared<PythonCallback>(std::move(callback), "tavclient subscriber");
            py::gil_scoped_release release;
            return m.Get().Subscribe([call](const StateSample& sample) { (*call)(sample); });
          },
          "callback"_a,
          "callback(sample) is called with every sample from now on, on a thread of its own; "
          "one still busy misses the samples in between. Returns the id for unsubscribe().")
      .def(
          "unsubscribe",
          [](MonitorHandle& m, int id) {
            py::gil_scoped_release release;
            m.Get().Unsubscribe(id);
          },
          "id"_a,
          "Ends a subscription once its callback is no longer running (not from that callback).")
      .def(
          "start_recording",
          [](MonitorHandle& m, const std::string& path) {
            int code = 0;
            {
              py::gil_scoped_release release;
              code = m.Get().StartRecording(path);
            }
            Check(code);
          },
          "path"_a,
          "Writes every sample from now on as a CSV row to path (replaced): a header naming each "
          "column with its unit, flushed at least once a second. RobotError 1005011 when the "
          "file cannot be opened.")
      .def(
          "stop_recording",
          [](MonitorHandle& m) {
            py::gil_scoped_release release;
            m.Get().StopRecording();
          },
          "Closes the recording with every row written.")
      .def("stats", [](MonitorHandle& m) { return m.Get().Stats(); });
}

}  // namespace tavpy
