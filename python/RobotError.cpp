#include "RobotError.h"

#include <pybind11/eval.h>

#include <tavclient/Robot.h>

namespace py = pybind11;

namespace tavpy {

void BindRobotError(py::module_& module) {
  // A Python class, so that it subclasses Exception like any other and carries plain attributes.
  py::exec(R"py(
class RobotError(Exception):
    """A command returned a non-zero event code: `code`, and `text` saying what it means."""

    def __init__(self, code, text):
        super().__init__(code, text)
        self.code = code
        self.text = text

    def __str__(self):
        return f"{self.text} ({self.code})"
    )py",
           module.attr("__dict__"));
  py::register_exception_translator([](std::exception_ptr pending) {
    try {
      if (pending) {
        std::rethrow_exception(pending);
      }
    } catch (const RobotFailure& failure) {
      const py::object type = py::module_::import("tavclient").attr("RobotError");
      const py::object error = type(failure.code, Robot::EventText(failure.code));
      PyErr_SetObject(type.ptr(), error.ptr());
    }
  });
}

}  // namespace tavpy
