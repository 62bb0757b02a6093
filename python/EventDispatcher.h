#ifndef TAVCLIENT_PYTHON_EVENTDISPATCHER_H
#define TAVCLIENT_PYTHON_EVENTDISPATCHER_H

#include <pybind11/pybind11.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace tavpy {

// Hands the codes a Robot's workers report to a Python callable. The workers only queue the
// code; a thread of its own takes the GIL and calls the callable, so a worker never waits for
// a Python thread that may itself be waiting, with the GIL released, for that worker.
class EventDispatcher {
public:
  EventDispatcher() = default;
  // With the GIL held; Stop must have been called.
  ~EventDispatcher();
  EventDispatcher(const EventDispatcher&) = delete;
  EventDispatcher& operator=(const EventDispatcher&) = delete;

  // With the GIL held. None removes the callable; the first callable starts the thread.
  void SetCallback(pybind11::object callable);
  // With the GIL held: the callable, null when none, for the garbage collector.
  pybind11::handle Callback() const { return queue->callback; }
  // From any thread, without the GIL. Dropped when no callable is set.
  void Post(int code);
  // Once, at import: from the interpreter's exit on, no callable is called any more.
  static void CloseAtExit();
  // Without the GIL: delivers what is queued, then joins the thread. Called by the callable
  // itself (it let go of the last reference to its Robot), it leaves the thread to end alone.
  void Stop();

private:
  // Shared with the thread, which may outlive this object when the callable ended it.
  struct Queue {
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<int> codes;
    bool listening = false;
    bool stopping = false;
    pybind11::object callback;  // null when none; read and written with the GIL held
  };

  static void _run(std::shared_ptr<Queue> queue);
  // With the gate entered: calls the callable with the GIL.
  static void _deliver(Queue& queue, int code);

  std::shared_ptr<Queue> queue = std::make_shared<Queue>();
  std::thread thread;
};

}  // namespace tavpy

#endif
