#ifndef TAVCLIENT_THREAD_TAVTHREAD_H
#define TAVCLIENT_THREAD_TAVTHREAD_H

#include <pthread.h>

namespace Tavthread {

// A POSIX thread that runs the derived object's Run(). The base never joins on its own:
// the object that starts a thread stops and joins it before its members go away.
class TavThread {
 public:
  TavThread();
  virtual ~TavThread();
  TavThread(const TavThread&) = delete;
  TavThread& operator=(const TavThread&) = delete;

  bool Start();
  bool Join();
  bool Detach();
  bool Terminate();

  virtual void Run() = 0;

 private:
  static void* ThreadEntry(void* self);

  pthread_t handle;
  bool started;  // a handle exists that has been neither joined nor detached
};

}  // namespace Tavthread

#endif
