#ifndef TAVCLIENT_PYTHON_EVENTDISPATCHER_H
#define TAVCLIENT_PYTHON_EVENTDISPATCHER_H

#include <pybind11/pybind11.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace tavpy {

// Hands the codes a Robot's workers report to a Python callable. The workers only queue the
// code; a thread of its own takes the GIL and calls the callable, so a worker never waits for
// a Python thread that may itself be waiting, with the GIL released, for that worker.
class EventDispatcher {
public:
  EventDispatcher() = default;
  // Stop must have been called, without the GIL.
  ~EventDispatcher();
  EventDispatcher(const EventDispatcher&) = delete;
  EventDispatcher& operator=(const EventDispatcher&) = delete;

  // With the GIL held. None removes the callable; the first callable starts the thread.
  void SetCallback(pybind11::object callable);
  // From any thread, without the GIL. Dropped when no callable is set.
  void Post(int code);
  // Without the GIL: delivers what is queued, then joins the thread. Idempotent.
  void Stop();

private:
  void _run();

  std::mutex mutex;
  std::condition_variable wake;
  std::deque<int> codes;
  bool listening = false;
  bool stopping = false;
  pybind11::object callback;  // null when none; read and written with the GIL held
  std::thread thread;
};

}  // namespace tavpy

#endif
