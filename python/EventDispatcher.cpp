#include "EventDispatcher.h"

#include <utility>

#include "PythonGate.h"

namespace py = pybind11;

namespace tavpy {

namespace {

PythonGate& Gate() { return PythonGate::Instance(); }

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
