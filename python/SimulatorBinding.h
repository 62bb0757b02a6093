#ifndef TAVCLIENT_PYTHON_SIMULATORBINDING_H
#define TAVCLIENT_PYTHON_SIMULATORBINDING_H

#include <pybind11/pybind11.h>

namespace tavpy {

// tavclient.Simulator: the controller simulator, served from a thread of this process.
void BindSimulator(pybind11::module_& module);

}  // namespace tavpy

#endif
