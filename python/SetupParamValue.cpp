#include "SetupParamValue.h"

#include <utility>

namespace py = pybind11;
using namespace pybind11::literals;

namespace tavpy {

namespace {

template <typename Value, typename PyType>
Value Field(const py::tuple& items, std::size_t index, const char* name, const char* kind) {
  const py::handle item = items[index];
  // bool is an int to Python, but never a host id or a baud rate.
  if (!py::isinstance<PyType>(item) || py::isinstance<py::bool_>(item)) {
    throw py::type_error(std::string("Setup_Param ") + name + ": expected " + kind);
  }
  try {
    return item.cast<Value>();
  } catch (const py::cast_error&) {
    throw py::value_error(std::string("Setup_Param ") + name + ": out of range");
  }
}

}  // namespace

SetupParamValue SetupParamValue::From(const py::handle& param) {
  if (py::isinstance<SetupParamValue>(param)) {
    return param.cast<SetupParamValue>();
  }
  if (!py::isinstance<py::tuple>(param)) {
    throw py::type_error("param: expected a Setup_Param or a 5-tuple");
  }
  const auto items = py::reinterpret_borrow<py::tuple>(param);
  if (items.size() != 5) {
    throw py::value_error(
        "param: expected 5 values (channel_name, channel_type, protocol, "
        "host_id, baud_rate), got " +
        std::to_string(items.size()));
  }
  return {Field<std::string, py::str>(items, 0, "channel_name", "str"),
          Field<std::string, py::str>(items, 1, "channel_type", "str"),
          Field<std::string, py::str>(items, 2, "protocol", "str"),
          Field<int, py::int_>(items, 3, "host_id", "int"),
          Field<int, py::int_>(items, 4, "baud_rate", "int")};
}

void BindSetupParam(py::module_& module) {
  py::class_<SetupParamValue>(module, "Setup_Param",
                              "The controller's channel towards the motors, e.g. "
                              "Setup_Param('can0', 'can', 'canopen', 1, 500000).")
      .def(py::init([](std::string channelName, std::string channelType, std::string protocol,
                       int hostId, int baudRate) {
             return SetupParamValue{std::move(channelName), std::move(channelType),
                                    std::move(protocol), hostId, baudRate};
           }),
           "channel_name"_a, "channel_type"_a, "protocol"_a, "host_id"_a, "baud_rate"_a)
      .def_readwrite("channel_name", &SetupParamValue::channelName)
      .def_readwrite("channel_type", &SetupParamValue::channelType)
      .def_readwrite("protocol", &SetupParamValue::protocol)
      .def_readwrite("host_id", &SetupParamValue::hostId)
      .def_readwrite("baud_rate", &SetupParamValue::baudRate, "bits per second")
      .def("__repr__", [](const SetupParamValue& value) {
        return py::str("Setup_Param({!r}, {!r}, {!r}, {}, {})")
            .format(value.channelName, value.channelType, value.protocol, value.hostId,
                    value.baudRate);
      });
}

}  // namespace tavpy
