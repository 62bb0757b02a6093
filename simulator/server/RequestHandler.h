#ifndef TAVSIM_SERVER_REQUESTHANDLER_H
#define TAVSIM_SERVER_REQUESTHANDLER_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/ClientMessage.h"
#include "model/SimulatedController.h"
#include "server/ActivityLog.h"

namespace tavsim {

// A message ready for one client, before fault rules are applied.
struct OutgoingReply {
  std::string answers;  // what fault rules match: "heart", "ClientInfo", a function name;
                        // empty for Error messages, which are never changed
  std::string text;
  bool hasChecksum = false;
};

// The controller's side of the conversation: reads each framed message a client sends and
// answers it in kind, running commands on the shared simulated controller. Replies to
// commands that wait (wait_for_motors) come later from Completed(), routed to the connection
// that asked. Not thread-safe: the server's loop alone uses it.
class RequestHandler {
public:
  RequestHandler(SimulatedController& controller, LogSink log);

  // The answer to `message`, or nothing while the command is pending.
  std::optional<OutgoingReply> Answer(ConnectionId connection, const std::string& message);
  // Replies of pending commands that have finished, with the connection each belongs to.
  std::vector<std::pair<ConnectionId, OutgoingReply>> Completed();
  // Drops the pending commands of a connection that has gone.
  void Forget(ConnectionId connection);
  // Seconds of controller time until Completed() next has something; nothing if none pends.
  std::optional<double> SecondsUntilCompletion() const;

private:
  struct PendingCommand {
    ConnectionId connection;
    std::string timestamp;
    std::string functionName;
  };

  std::optional<OutgoingReply> _answerCommand(ConnectionId connection,
                                              const ClientMessage& command);
  OutgoingReply _unreadable(ConnectionId connection, const std::string& why);
  void _log(ConnectionId connection, const std::string& line) const;

  SimulatedController& controller;
  LogSink log;
  std::map<std::uint64_t, PendingCommand> pending;  // by the controller's ticket
};

// The command reply for `functionName` sent with `timestamp`.
OutgoingReply CommandAnswer(const std::string& timestamp, const std::string& functionName,
                            const Reply& reply);

}  // namespace tavsim

#endif
