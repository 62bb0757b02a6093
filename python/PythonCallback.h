#ifndef TAVCLIENT_PYTHON_PYTHONCALLBACK_H
#define TAVCLIENT_PYTHON_PYTHONCALLBACK_H

#include <pybind11/pybind11.h>

#include <utility>

#include "PythonGate.h"

namespace tavpy {

// A Python callable that the library calls from threads without the GIL: each call takes the
// GIL (never once the interpreter exits), an exception it raises is reported as unraisable,
// and its last reference goes with the GIL held.
class PythonCallback {
public:
  PythonCallback(pybind11::object callable, const char* what)
      : target(std::move(callable)), name(what) {}
  ~PythonCallback() {
    pybind11::gil_scoped_acquire gil;
    target = pybind11::object();
  }
  PythonCallback(const PythonCallback&) = delete;
  PythonCallback& operator=(const PythonCallback&) = delete;

  template <typename... Args>
  void operator()(Args&&... args) const {
    if (!PythonGate::Instance().Enter()) {
      return;
    }
    {
      pybind11::gil_scoped_acquire gil;
      try {
        target(std::forward<Args>(args)...);
      } catch (pybind11::error_already_set& error) {
        error.discard_as_unraisable(name);
      }
    }
    PythonGate::Instance().Leave();
  }

private:
  pybind11::object target;
  const char* name;
};

}  // namespace tavpy

#endif
