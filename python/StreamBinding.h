#ifndef TAVCLIENT_PYTHON_STREAMBINDING_H
#define TAVCLIENT_PYTHON_STREAMBINDING_H

#include <pybind11/pybind11.h>

namespace tavpy {

// tavclient.StateField, StateSample, MonitorStats and StateMonitor.
void BindStreams(pybind11::module_& module);

}  // namespace tavpy

#endif
