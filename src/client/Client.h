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
#include "CallInterruption.h"
#include "Heart.h"
#include "LocalSystemInfo.h"
#include "Receiver.h"
#include "Sender.h"
#include "SessionClock.h"
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
// A call alone on its session writes its request and reads its reply itself, so that nothing
// waits for another thread to wake up; calls that overlap queue their requests for the Sender
// and wait in the reply store, filled by whoever reads.
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
  /// Calls `callback` with the code of the event that fails the session, on the thread that
  /// met it, after the waiting calls have been released. It holds up that thread, so it
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
  // Measures the session's time on `clock` (tests give one they move by hand); call it before
  // RobotLogin. The clock must outlive the Client.
  void _useClock(SessionClock& clock);

private:
  using Reply = std::map<std::string, std::string>;

  // What the workers tell their session, each about the connection it was loaded with.
  friend class SocketWorker;
  friend class Heart;
  // `event` happened on `connection`: it fails the session if that connection is still open
  // and nothing has failed it yet.
  void _eventCallback(std::uint64_t connection, Robot_Event event);
  // A heartbeat is due.
  void _heartCallback();
  // When anything last arrived from the controller.
  SessionClock::TimePoint _lastHeard();

  void _failSession(Robot_Event event);
  // Whether `connection` is the one open now.
  bool _isOpen(std::uint64_t connection) const { return connected && openConnection == connection; }
  // The round trip of a call alone on the session: it writes and reads itself.
  int _exchangeAlone(Tasks& task, std::uint64_t connection, const std::string& name,
                     std::uint64_t ticket, Reply& reply);
  // Waits in the store for the reply `name` until it is filed, `connection` closes (the sticky
  // status, else 1002011) or the reply time-out passes.
  int _waitReply(std::uint64_t connection, const std::string& name, std::uint64_t ticket,
                 Reply& result);
  // Why a call that has no reply yet must stop waiting: its code, or 0 to go on.
  int _stopWaiting(std::uint64_t connection, SessionClock::TimePoint deadline,
                   CallInterruption::Watch& interruption) const;
  SessionClock::TimePoint _deadline() const;
  // The steady-clock time by which a wait for `deadline` looks again.
  SessionClock::TimePoint _wakeAt(SessionClock::TimePoint deadline) const;
  // Wakes every wait of the session, so that it looks at its conditions again.
  void _wakeWaits();
  // The code for a call on this session now: the sticky status, else 1001011 when not connected.
  int _refusal() const;

  // Serialises connecting, closing and queueing, so no task is queued into a closed connection.
  std::mutex connectionMutex;
  sockaddr_in serverAddress{};
  int socketFd = -1;
  std::atomic<int> status{RobotEvents::kSuccess};
  // Held while an event is judged: whether its connection is still open and the first to fail.
  std::mutex reportMutex;
  bool eventReported = false;  // guarded by reportMutex
  std::mutex eventListenerMutex;
  std::function<void(int)> eventListener;
  LocalSystemInfo localSystemInfo;
  std::atomic<bool> connected{false};
  // Numbers the connections; what the workers report names the one it is about.
  std::atomic<std::uint64_t> openConnection{0};
  // Calls of this session between their start and their end; the first of them reads itself.
  std::atomic<int> callsInFlight{0};
  std::atomic<double> replyTimeoutSeconds{kDefaultReplyTimeoutSeconds};
  std::atomic<SessionClock*> clock{&SessionClock::SteadyClock()};
  Receiver receiver;
  Sender sender;
  Heart heart;
};

#endif
