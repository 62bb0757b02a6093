#ifndef TAVCLIENT_THREAD_TAVTHREAD_H
#define TAVCLIENT_THREAD_TAVTHREAD_H

#include <pthread.h>

namespace Tavthread {

// A POSIX thread whose body is the derived class's Run. The object neither joins nor detaches
// in its destructor: a derived class that owns a running thread must end and join it in its
// own destructor, before its members go.
//
// The control operations are meant for one controlling thread at a time.
class TavThread {
public:
  TavThread();
  virtual ~TavThread();
  TavThread(const TavThread&) = delete;
  TavThread& operator=(const TavThread&) = delete;

  // Creates the thread; false if pthread_create failed (nothing else changes then).
  bool Start();
  // Each returns true when the pthread call succeeded. Without a started thread (never
  // started, or already joined or detached) they return false and call nothing.
  bool Detach();
  bool Join();
  bool Terminate();

  virtual void Run() = 0;

private:
  static void* _threadEntry(void* self);

  pthread_t handle;
  // Whether handle names a thread that may still be joined, detached or cancelled.
  bool hasThread = false;
};

}  // namespace Tavthread

#endif
