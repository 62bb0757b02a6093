#ifndef TAVSIM_SERVER_SERVERLOOP_H
#define TAVSIM_SERVER_SERVERLOOP_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/Connection.h"
#include "core/LoopbackListener.h"
#include "server/FaultInjector.h"
#include "server/Outbox.h"
#include "server/RequestHandler.h"
#include "server/ServerOptions.h"
#include "server/Wakeup.h"

struct pollfd;

namespace tavsim {

// The simulator's one network thread: accepts clients, reads and answers their messages and
// writes the replies, all without blocking, so a pending wait of one client holds up nothing
// else. Run() returns after Stop(); the connections close when the loop is destroyed.
class ServerLoop {
public:
  ServerLoop(const ServerOptions& options, SimulatedController& controller, FaultInjector& faults);

  std::uint16_t Port() const { return listener.Port(); }
  std::size_t ConnectionCount() const { return connectionCount.load(); }

  void Run();
  // Both may be called from any thread.
  void Stop();
  void Wake() { wakeup.Notify(); }

private:
  struct Session {
    Connection connection;
    Outbox outbox;
    bool cutOff = false;  // sent too much without a message end: answer nothing more
  };
  using Sessions = std::map<ConnectionId, Session>;

  std::vector<pollfd> _watches() const;
  int _pollTimeout(SteadyTime now) const;
  void _accept();
  // Reads and answers what the client sent; false when the session must end.
  bool _serve(ConnectionId id, Session& session);
  void _deliver(ConnectionId id, Session& session, const OutgoingReply& reply);
  void _deliverCompletions();
  // Writes what is due; false when the session must end.
  bool _flush(ConnectionId id, Session& session, SteadyTime now);
  Sessions::iterator _close(Sessions::iterator session, const std::string& why);
  void _log(ConnectionId id, const std::string& line) const;

  LoopbackListener listener;
  Wakeup wakeup;
  RequestHandler handler;
  FaultInjector& faults;
  LogSink log;
  std::size_t maxMessageBytes;
  Sessions sessions;
  ConnectionId nextId = 1;
  std::atomic<bool> stopping{false};
  std::atomic<std::size_t> connectionCount{0};
};

}  // namespace tavsim

#endif
