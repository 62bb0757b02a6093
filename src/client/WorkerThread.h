#ifndef TAVCLIENT_CLIENT_WORKERTHREAD_H
#define TAVCLIENT_CLIENT_WORKERTHREAD_H

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "../thread/TavThread.h"

// The life of a long-lived worker: it is started once, switches between working (while its
// active flag is set: loaded or enabled) and idle, and ends from idle once it is stopped.
// Idle waits last at most a second and end early when the flags change, so neither a stop
// nor a new connection waits for the end of a sleep.
//
// The running flag is raised by Start rather than by the thread itself, so a stop that comes
// before the thread got going is not lost. Every derived destructor stops and joins the thread
// first, so it never runs on a partly destroyed object.
class WorkerThread : public Tavthread::TavThread {
public:
  WorkerThread(const char* setupLine, const char* shutdownLine);

  bool Start();
  void Run() final;

protected:
  // One unit of work while active; false returns the worker to idle.
  virtual bool _work() = 0;

  void _setActive(bool value);
  void _requestStop();

  std::atomic<bool> running{false};
  std::atomic<bool> active{false};
  // Guards flag changes for the waits of the worker thread.
  std::mutex flagMutex;
  std::condition_variable flagChanged;

private:
  bool _idle();

  const char* const setupLine;
  const char* const shutdownLine;
};

#endif
