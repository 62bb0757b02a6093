#ifndef TAVCLIENT_CLIENT_SOCKETWORKER_H
#define TAVCLIENT_CLIENT_SOCKETWORKER_H

#include <atomic>
#include <cstdint>
#include <mutex>

#include "../common/RobotEvent.h"
#include "WorkerThread.h"

// What the Sender and the Receiver share: the connected socket they are loaded with, their
// last status code and the event callback through which they report it to their session.
//
// Every Load starts a new connection. A worker notes the load before its socket call and
// reports only while that load is still current; Load and Unload wait for a report in
// progress, so nothing of a connection that was unloaded (or replaced by a new login) is
// ever reported into the next one.
class SocketWorker : public WorkerThread {
public:
  using EventCallback = void (*)(Robot_Event);
  // The same, with the context pointer given at registration: the session the worker serves.
  using ContextEventCallback = void (*)(Robot_Event, void*);

  SocketWorker(const char* setupLine, const char* shutdownLine);
  // Register before Start.
  void RobotEventRegister(EventCallback callback);
  void RobotEventRegister(ContextEventCallback callback, void* context);
  void Load(int& socket);
  void Unload();
  // Returns once the worker is in no socket call. After Unload it makes none until it is
  // loaded again, so the socket may then be closed without racing the worker.
  void WaitSocketReleased();
  void _eventCall();

protected:
  // Records `event` as the status and reports it through the callback, if the connection of
  // `load` is still the one loaded; one that `endsConnection` also unloads the worker.
  // Returns whether it reported.
  bool _report(std::uint64_t load, Robot_Event event, bool endsConnection);
  // Whether the connection of `load` is the one still loaded.
  bool _isCurrent(std::uint64_t load) const { return active && loads == load; }

  std::atomic<int> status{RobotEvents::kSuccess};
  std::atomic<int> socketFd{-1};
  std::atomic<std::uint64_t> loads{0};
  // Held by the worker across checking that it is loaded and its socket call.
  std::mutex socketUse;

private:
  // Held across checking the load and reporting, and by Load and Unload.
  std::mutex reportMutex;
  EventCallback eventCallback = nullptr;
  ContextEventCallback contextEventCallback = nullptr;
  void* eventContext = nullptr;
};

#endif
