#include "EventDispatcher.h"

#include <utility>

namespace py = pybind11;

namespace tavpy {

namespace {

// Lets dispatcher threads into Python until the interpreter begins to exit. A thread that
// takes the GIL during finalization is ended on the spot, through frames that must not be
// unwound, so Close waits for every thread inside and lets none in again.
class PythonGate {
public:
  bool Enter() {
    std::lock_guard<std::mutex> lock(mutex);
    if (closed) {
      return false;
    }
    ++inside;
    return true;
  }
  void Leave() {
    {
      std::lock_guard<std::mutex> lock(mutex);
      --inside;
    }
    left.notify_all();
  }
  // Without the GIL.
  void Close() {
    std::unique_lock<std::mutex> lock(mutex);
    closed = true;
    left.wait(lock, [this] { return inside == 0; });
  }

private:
  std::mutex mutex;
  std::condition_variable left;
  int inside = 0;
  bool closed = false;
};

// Never destroyed: dispatcher threads may outlive the static objects.
PythonGate& Gate() {
  static PythonGate* gate = new PythonGate;
  return *gate;
}

}  // namespace

void EventDispatcher::CloseAtExit() {
  py::module_::import("atexit").attr("register")(py::cpp_function([] {
    py::gil_scoped_release release;
    Gate().Close();
  }));
}

// The callable goes while the GIL is held; a thread left to end alone then holds none.
EventDispatcher::~EventDispatcher() { queue->callback = py::object(); }

void EventDispatcher::SetCallback(py::object callable) {
  const bool listen = !callable.is_none();
  queue->callback = listen ? std::move(callable) : py::object();
  std::lock_guard<std::mutex> lock(queue->mutex);
  queue->listening = listen;
  if (listen && !thread.joinable() && !queue->stopping) {
    thread = std::thread(&EventDispatcher::_run, queue);
  }
}

void EventDispatcher::Post(int code) {
  {
    std::lock_guard<std::mutex> lock(queue->mutex);
    if (!queue->listening || queue->stopping) {
      return;
    }
    queue->codes.push_back(code);
  }
  queue->wake.notify_one();
}

void EventDispatcher::Stop() {
  {
    std::lock_guard<std::mutex> lock(queue->mutex);
    queue->stopping = true;
  }
  queue->wake.notify_one();
  if (!thread.joinable()) {
    return;
  }
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
}

void EventDispatcher::_run(std::shared_ptr<Queue> queue) {
  std::unique_lock<std::mutex> lock(queue->mutex);
  for (;;) {
    queue->wake.wait(lock, [&] { return queue->stopping || !queue->codes.empty(); });
    if (queue->codes.empty()) {
      return;
    }
    const int code = queue->codes.front();
    queue->codes.pop_front();
    lock.unlock();
    if (Gate().Enter()) {
      _deliver(*queue, code);
      Gate().Leave();
    }
    lock.lock();
  }
}

void EventDispatcher::_deliver(Queue& queue, int code) {
  py::gil_scoped_acquire gil;
  // A reference of its own: the callable may replace itself, or end its Robot, as it runs.
  const py::object target = queue.callback;
  try {
    if (target) {
      target(code);
    }
  } catch (py::error_already_set& error) {
    error.discard_as_unraisable("tavclient event callback");
  }
}

}  // namespace tavpy
