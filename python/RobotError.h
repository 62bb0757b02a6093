#ifndef TAVCLIENT_PYTHON_ROBOTERROR_H
#define TAVCLIENT_PYTHON_ROBOTERROR_H

#include <pybind11/pybind11.h>

#include <exception>

namespace tavpy {

// A non-zero code from the library, on its way to Python as tavclient.RobotError.
struct RobotFailure : std::exception {
  explicit RobotFailure(int failureCode) : code(failureCode) {}
  const char* what() const noexcept override { return "robot command failed"; }
  int code;
};

inline void Check(int code) {
  if (code != 0) {
    throw RobotFailure(code);
  }
}

// Adds RobotError to `module` and turns every RobotFailure into it.
void BindRobotError(pybind11::module_& module);

}  // namespace tavpy

#endif
