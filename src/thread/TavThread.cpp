#include "thread/TavThread.h"

namespace Tavthread {

TavThread::TavThread() : handle() {}

TavThread::~TavThread() = default;

bool TavThread::Start() {
  pthread_t created;
  if (pthread_create(&created, nullptr, &TavThread::_threadEntry, this) != 0) {
    return false;
  }
  handle = created;
  hasThread = true;
  return true;
}

bool TavThread::Detach() {
  if (!hasThread || pthread_detach(handle) != 0) {
    return false;
  }
  hasThread = false;
  return true;
}

bool TavThread::Join() {
  if (!hasThread || pthread_join(handle, nullptr) != 0) {
    return false;
  }
  hasThread = false;
  return true;
}

// A cancelled thread still has to be joined (or detached), so the handle stays.
bool TavThread::Terminate() { return hasThread && pthread_cancel(handle) == 0; }

void* TavThread::_threadEntry(void* self) {
  static_cast<TavThread*>(self)->Run();
  return nullptr;
}

}  // namespace Tavthread
