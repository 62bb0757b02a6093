#include "PythonGate.h"

namespace tavpy {

PythonGate& PythonGate::Instance() {
  static PythonGate* gate = new PythonGate;
  return *gate;
}

bool PythonGate::Enter() {
  std::lock_guard<std::mutex> lock(mutex);
  if (closed) {
    return false;
  }
  ++inside;
  return true;
}

void PythonGate::Leave() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    --inside;
  }
  left.notify_all();
}

void PythonGate::Close() {
  std::unique_lock<std::mutex> lock(mutex);
  closed = true;
  left.wait(lock, [this] { return inside == 0; });
}

}  // namespace tavpy
