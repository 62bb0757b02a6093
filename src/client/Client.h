#ifndef TAVCLIENT_CLIENT_CLIENT_H
#define TAVCLIENT_CLIENT_CLIENT_H

#include <netinet/in.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "../common/RobotEvent.h"
#include "Heart.h"
#include "LocalSystemInfo.h"
#include "Receiver.h"
#include "Sender.h"
#include "Tasks.h"

// The session with the controller: owns the socket and the Sender, Receiver and Heart threads,
// queues outbound messages and waits for named replies. Each Client is a session of its own:
// its workers report to it alone, so several live side by side in one process.
//
// One status code is sticky: once a worker has reported an event (or a connect failed) every
// operation returns it until the next InitializeSocket, which starts a fresh session. Only the
// first event is reported: a later one follows from the failure already reported. Closing the
// connection (FinalizeSocket from any thread, the peer, a failed read) releases every waiting
// call at once. Destroying a connected Client closes its connection first.
//
// The heart is the watchdog: while connected it sends a heartbeat every period and fails the
// session with 1003041 once nothing at all has arrived for the silence limit. A controller
// that is busy with a long command still answers heartbeats, so it is never failed.
class Client {
public:
  static constexpr double kDefaultReplyTimeoutSeconds = 3600.0;

  Client();
  virtual ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  // Starts a fresh session: ends the old one whatever its state (its connection, queued tasks,
  // filed replies and sticky status go), then connects. 1004011 for a null or non-IPv4 `ip`.
  int InitializeSocket(const char* ip, short port);
  // Closes the connection; releases every waiting call. Nothing to do when not connected.
  int FinalizeSocket();
  // Queues a copy of `task`; returns before anything is sent. 1001011 when not connected.
  int AddTasks(Tasks task);
  // Waits for the reply filed under `name` and takes it out of the store.
  int GetResult(std::string name, std::map<std::string, std::string>& result);
  // Sends `task` and waits for its reply `name`: the store is told of the name before the
  // task can reach the controller, so neither a stale entry nor a lost race answers it.
  int Exchange(Tasks task, const std::string& name, std::map<std::string, std::string>& reply);
  /// Bounds every later wait for a reply to `seconds` (3600 by default). A wait that runs
  /// out returns 1003031 and leaves the session usable. A non-positive or non-finite value
  /// returns 1006011 and keeps the previous bound.
  int SetReplyTimeout(double seconds);
  /// Calls `callback` with the code of the event that fails the session, on the worker thread
  /// that met it, after the waiting calls have been released. It holds up that worker, so it
  /// should only hand the code on. An empty function removes it; a callback already under
  /// way may still finish after its removal.
  void SetEventCallback(std::function<void(int)> callback);
  /// Sets the heartbeat period and the silence limit, in seconds (9 and 20 by default): while
  /// connected a heartbeat goes out every period, and once nothing at all has arrived from the
  /// controller for the silence limit the session fails with 1003041, releasing every waiting
  /// call. The period applies from the next heartbeat, the limit at once. A non-positive or
  /// non-finite value, or a limit not above the period, returns 1006011 and keeps the previous
  /// values.
  int SetHeartbeat(double periodSeconds, double silenceLimitSeconds);
  void GetClientIP(std::string& ip);
  LocalSystemInfo GetLocalSystemInfo();
  int _loadLocalSystemInfo();

  // The workers' callbacks; `client` is the Client that registered them.
  static void _eventCallback(Robot_Event event, void* client);
  static void _heartCallback(void* client);
  static void _silenceCallback(void* client);
  static Heart::Clock::time_point _lastHeard(void* client);

private:
  using Reply = std::map<std::string, std::string>;

  void _setStatus(Robot_Event event);
  // Waits for the reply `name` until it is filed, the connection of this call closes (the
  // sticky status, else 1002011), `giveUp` holds (the same) or the reply time-out passes.
  int _waitReply(std::uint64_t closing, const std::string& name, Reply& result,
                 const std::function<bool()>& giveUp);
  // The code for a call on this session now: the sticky status, else 1001011 when not connected.
  int _refusal() const;

  // Serialises connecting, closing and queueing, so no task is queued into a closed connection.
  std::mutex connectionMutex;
  sockaddr_in serverAddress{};
  int socketFd = -1;
  std::atomic<int> status{RobotEvents::kSuccess};
  // Set by the first event the workers report; the session reports no other.
  std::atomic<bool> eventReported{false};
  std::mutex eventListenerMutex;
  std::function<void(int)> eventListener;
  LocalSystemInfo localSystemInfo;
  std::atomic<bool> connected{false};
  // Counts closed connections, so a waiter can tell that the one it waits on has gone.
  std::atomic<std::uint64_t> closings{0};
  std::atomic<double> replyTimeoutSeconds{kDefaultReplyTimeoutSeconds};
  Receiver receiver;
  Sender sender;
  Heart heart;
};

#endif
