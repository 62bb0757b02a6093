#include "EventDispatcher.h"

#include <utility>

namespace py = pybind11;

namespace tavpy {

namespace {

// A thread that takes the GIL while the interpreter shuts down is ended on the spot, unwinding
// through frames that must not be unwound; such late events are dropped instead.
bool InterpreterGone() {
#if PY_VERSION_HEX >= 0x030D0000
  return Py_IsFinalizing() != 0;
#else
  return _Py_IsFinalizing() != 0;
#endif
}

}  // namespace

EventDispatcher::~EventDispatcher() { Stop(); }

void EventDispatcher::SetCallback(py::object callable) {
  const bool listen = !callable.is_none();
  callback = listen ? std::move(callable) : py::object();
  std::lock_guard<std::mutex> lock(mutex);
  listening = listen;
  if (listen && !thread.joinable() && !stopping) {
    thread = std::thread(&EventDispatcher::_run, this);
  }
}

void EventDispatcher::Post(int code) {
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (!listening || stopping) {
      return;
    }
    codes.push_back(code);
  }
  wake.notify_one();
}

void EventDispatcher::Stop() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    stopping = true;
  }
  wake.notify_one();
  if (thread.joinable()) {
    thread.join();
  }
}

void EventDispatcher::_run() {
  std::unique_lock<std::mutex> lock(mutex);
  for (;;) {
    wake.wait(lock, [this] { return stopping || !codes.empty(); });
    if (codes.empty()) {
      return;
    }
    const int code = codes.front();
    codes.pop_front();
    lock.unlock();
    if (!InterpreterGone()) {
      py::gil_scoped_acquire gil;
      // A reference of its own: the callable may replace itself while it runs.
      const py::object target = callback;
      try {
        if (target) {
          target(code);
        }
      } catch (py::error_already_set& error) {
        error.discard_as_unraisable("tavclient event callback");
      }
    }
    lock.lock();
  }
}

}  // namespace tavpy
