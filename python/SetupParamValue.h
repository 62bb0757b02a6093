#ifndef TAVCLIENT_PYTHON_SETUPPARAMVALUE_H
#define TAVCLIENT_PYTHON_SETUPPARAMVALUE_H

#include <pybind11/pybind11.h>
#include <tavclient/Robot.h>

#include <string>

namespace tavpy {

// tavclient.Setup_Param: a Setup_Param that owns its texts.
struct SetupParamValue {
  std::string channelName;
  std::string channelType;
  std::string protocol;
  int hostId = 0;
  int baudRate = 0;

  // Valid while this value lives.
  Setup_Param View() const {
    return {channelName.c_str(), channelType.c_str(), protocol.c_str(), hostId, baudRate};
  }
  // A Setup_Param, or a 5-tuple (channel_name, channel_type, protocol, host_id, baud_rate);
  // TypeError or ValueError otherwise.
  static SetupParamValue From(const pybind11::handle& param);
};

void BindSetupParam(pybind11::module_& module);

}  // namespace tavpy

#endif
