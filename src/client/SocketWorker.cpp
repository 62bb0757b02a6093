#include "client/SocketWorker.h"

SocketWorker::SocketWorker(const char* setup, const char* shutdown) : WorkerThread(setup, shutdown) {}

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
  socketFd = socket;
  ++loads;
  _setActive(true);
}

void SocketWorker::Unload() {
  _setActive(false);
}

void SocketWorker::WaitSocketReleased() {
  std::lock_guard<std::mutex> lock(socketUse);
}

void SocketWorker::_eventCall() {
  if (contextEventCallback != nullptr) {
    contextEventCallback(status, eventContext);
  } else if (eventCallback != nullptr) {
    eventCallback(status);
  }
}

void SocketWorker::_report(Robot_Event event) {
  status = event;
  _eventCall();
}
