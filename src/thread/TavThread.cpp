#include "thread/TavThread.h"

namespace Tavthread {

TavThread::TavThread() : handle(), started(false) {}

TavThread::~TavThread() = default;

void* TavThread::ThreadEntry(void* self) {
  static_cast<TavThread*>(self)->Run();
  return nullptr;
}

bool TavThread::Start() {
  pthread_t created;
  if (pthread_create(&created, nullptr, &TavThread::ThreadEntry, this) != 0) return false;
  handle = created;
  started = true;
  return true;
}

// A handle that was never created, or already joined or detached, must not reach pthread.
bool TavThread::Join() {
  if (!started) return false;
  started = false;
  return pthread_join(handle, nullptr) == 0;
}

bool TavThread::Detach() {
  if (!started) return false;
  started = false;
  return pthread_detach(handle) == 0;
}

bool TavThread::Terminate() {
  if (!started) return false;
  return pthread_cancel(handle) == 0;
}

}  // namespace Tavthread
