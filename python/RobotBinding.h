#ifndef TAVCLIENT_PYTHON_ROBOTBINDING_H
#define TAVCLIENT_PYTHON_ROBOTBINDING_H

#include <pybind11/pybind11.h>

namespace tavpy {

// tavclient.Pose, the enums and tavclient.Robot.
void BindRobot(pybind11::module_& module);

}  // namespace tavpy

#endif
