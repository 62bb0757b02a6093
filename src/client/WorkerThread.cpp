#include "client/WorkerThread.h"

#include <chrono>

#include "common/TavLogger.h"

namespace {
constexpr std::chrono::seconds kIdleCheck{1};
}

WorkerThread::WorkerThread(const char* setup, const char* shutdown)
    : setupLine(setup), shutdownLine(shutdown) {}

bool WorkerThread::Start() {
  running = true;
  if (!TavThread::Start()) {
    running = false;
    return false;
  }
  return true;
}

void WorkerThread::Run() {
  TavLogger::GetInstance().Info(setupLine);
  do {
    while (active && _work()) {
    }
  } while (_idle());
  TavLogger::GetInstance().Info(shutdownLine);
}

bool WorkerThread::_idle() {
  std::unique_lock<std::mutex> lock(flagMutex);
  flagChanged.wait_for(lock, kIdleCheck, [this] { return !running || active; });
  return running;
}

void WorkerThread::_setActive(bool value) {
  {
    std::lock_guard<std::mutex> lock(flagMutex);
    active = value;
  }
  flagChanged.notify_all();
}

void WorkerThread::_requestStop() {
  {
    std::lock_guard<std::mutex> lock(flagMutex);
    running = false;
  }
  flagChanged.notify_all();
}
