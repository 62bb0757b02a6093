#include "client/SocketWorker.h"

SocketWorker::SocketWorker(const char* setup, const char* shutdown)
    : WorkerThread(setup, shutdown) {}

void SocketWorker::RobotEventRegister(EventCallback callback) {
  eventCallback = callback;
  contextEventCallback = nullptr;
}

void SocketWorker::RobotEventRegister(ContextEventCallback callback, void* context) {
  contextEventCallback = callback;
  eventContext = context;
  eventCallback = nullptr;
}

void SocketWorker::Load(int& socket) {
  std::lock_guard<std::mutex> lock(reportMutex);
  socketFd = socket;
  ++loads;
  _setActive(true);
}

void SocketWorker::Unload() {
  std::lock_guard<std::mutex> lock(reportMutex);
  _setActive(false);
}

void SocketWorker::WaitSocketReleased() { std::lock_guard<std::mutex> lock(socketUse); }

void SocketWorker::_eventCall() {
  if (contextEventCallback != nullptr) {
    contextEventCallback(status, eventContext);
  } else if (eventCallback != nullptr) {
    eventCallback(status);
  }
}

bool SocketWorker::_report(std::uint64_t load, Robot_Event event, bool endsConnection) {
  std::lock_guard<std::mutex> lock(reportMutex);
  if (!_isCurrent(load)) {
    return false;
  }
  if (endsConnection) {
    _setActive(false);
  }
  status = event;
  _eventCall();
  return true;
}
