#ifndef TAVCLIENT_CLIENT_SOCKETWORKER_H
#define TAVCLIENT_CLIENT_SOCKETWORKER_H

#include <atomic>
#include <cstdint>

#include "../common/RobotEvent.h"
#include "WorkerThread.h"

class Client;

// What the Sender and the Receiver share: the connected socket they are loaded with, the
// number of that connection, their last status code and where they report it: to their
// session, or to a plain callback when they run alone.
//
// A worker notes the connection before a socket call and reports only while that connection
// is still the one loaded; its session ignores reports of connections it has closed, so
// nothing of an old connection reaches the next one.
class SocketWorker : public WorkerThread {
public:
  using EventCallback = void (*)(Robot_Event);

  SocketWorker(const char* setupLine, const char* shutdownLine);
  // Register before Start.
  void RobotEventRegister(EventCallback callback);
  void ReportTo(Client& session);
  // A connection of the worker's own numbering.
  void Load(int& socket);
  void Load(int socket, std::uint64_t connection);
  void Unload();
  void _eventCall();

protected:
  // Records `event` as the status and reports it, if `connection` is still the one loaded;
  // one that `endsConnection` also unloads the worker.
  void _report(std::uint64_t connection, Robot_Event event, bool endsConnection);
  bool _isCurrent(std::uint64_t connection) const {
    return active && loadedConnection == connection;
  }
  // Called after Load and after Unload (not after a worker unloads itself), on their thread.
  virtual void _loaded() {}
  virtual void _unloaded() {}

  std::atomic<int> status{RobotEvents::kSuccess};
  std::atomic<int> socketFd{-1};
  std::atomic<std::uint64_t> loadedConnection{0};

private:
  EventCallback eventCallback = nullptr;
  Client* session = nullptr;
};

#endif
