#ifndef TAVCLIENT_CLIENT_SOCKETWORKER_H
#define TAVCLIENT_CLIENT_SOCKETWORKER_H

#include <atomic>
#include <mutex>

#include "WorkerThread.h"
#include "../common/RobotEvent.h"

// What the Sender and the Receiver share: the connected socket they are loaded with, their
// last status code and the event callback through which they report it to the session.
class SocketWorker : public WorkerThread {
public:
  using EventCallback = void (*)(Robot_Event);

  SocketWorker(const char* setupLine, const char* shutdownLine);

  void RobotEventRegister(EventCallback callback);
  void Load(int& socket);
  void Unload();
  // Returns once the worker is in no socket call. After Unload it makes none until it is
  // loaded again, so the socket may then be closed without racing the worker.
  void WaitSocketReleased();
  void _eventCall();

protected:
  // Records `event` as the status and reports it through the callback.
  void _report(Robot_Event event);

  std::atomic<int> status{RobotEvents::kSuccess};
  std::atomic<int> socketFd{-1};
  // Held by the worker across checking that it is loaded and its socket call.
  std::mutex socketUse;

private:
  EventCallback eventCallback = nullptr;
};

#endif
