#include "client/SocketWorker.h"

#include <mutex>

#include "client/Client.h"

SocketWorker::SocketWorker(const char* setup, const char* shutdown)
    : WorkerThread(setup, shutdown) {}

void SocketWorker::RobotEventRegister(EventCallback callback) { eventCallback = callback; }

void SocketWorker::ReportTo(Client& owner) { session = &owner; }

void SocketWorker::Load(int& socket) { Load(socket, loadedConnection + 1); }

void SocketWorker::Load(int socket, std::uint64_t connection) {
  {
    std::lock_guard<std::mutex> lock(flagMutex);
    socketFd = socket;
    loadedConnection = connection;
    active = true;
  }
  flagChanged.notify_all();
  _loaded();
}

void SocketWorker::Unload() {
  _setActive(false);
  _unloaded();
}

void SocketWorker::_eventCall() {
  if (session != nullptr) {
    session->_eventCallback(loadedConnection, status);
  } else if (eventCallback != nullptr) {
    eventCallback(status);
  }
}

void SocketWorker::_report(std::uint64_t connection, Robot_Event event, bool endsConnection) {
  {
    std::lock_guard<std::mutex> lock(flagMutex);
    if (!_isCurrent(connection)) {
      return;
    }
    if (endsConnection) {
      active = false;
    }
  }
  flagChanged.notify_all();
  status = event;
  if (session != nullptr) {
    session->_eventCallback(connection, event);
  } else if (eventCallback != nullptr) {
    eventCallback(event);
  }
}
