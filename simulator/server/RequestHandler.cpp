#include "server/RequestHandler.h"

#include <array>
#include <utility>

#include "core/ControllerReplies.h"
#include "server/ServerCodes.h"

namespace tavsim {

namespace {

// The client tells its inbound messages apart by these words anywhere in the text, so a
// command reply must not carry them.
bool Echoable(const std::string& text) {
  constexpr std::array<const char*, 3> kReserved{"ConnResult", "Heart", "Error"};
  for (const char* word : kReserved) {
    if (text.find(word) != std::string::npos) {
      return false;
    }
  }
  return true;
}

std::string Outcome(const Reply& reply) {
  return reply.Pending() ? "pending" : "-> " + reply.state;
}

}  // namespace

OutgoingReply CommandAnswer(const std::string& timestamp, const std::string& functionName,
                            const Reply& reply) {
  CommandReply message;
  message.timestamp = timestamp;
  message.functionName = functionName;
  message.state = reply.state;
  if (!reply.result1.empty()) {
    message.results.emplace_back("result1", reply.result1);
  }
  return OutgoingReply{functionName, CommandReplyMessage(message), true};
}

RequestHandler::RequestHandler(SimulatedController& served, LogSink sink)
    : controller(served), log(std::move(sink)) {}

std::optional<OutgoingReply> RequestHandler::Answer(ConnectionId connection,
                                                    const std::string& message) {
  const ClientMessage decoded = DecodeClientMessage(message);
  switch (decoded.kind) {
    case ClientMessageKind::Heart:
      return OutgoingReply{"heart", HeartReplyMessage(), false};
    case ClientMessageKind::ClientInfo: {
      const std::string result =
          decoded.checksumValid ? "0" : std::to_string(ServerCodes::kChecksumMismatch);
      _log(connection, "login, client " + decoded.version + " " + decoded.system + " " +
                           decoded.language + " -> " + result);
      return OutgoingReply{"ClientInfo", ConnResultMessage(result), true};
    }
    case ClientMessageKind::Command:
      return _answerCommand(connection, decoded);
    case ClientMessageKind::Unrecognised:
      break;
  }
  return _unreadable(connection, decoded.problem);
}

std::optional<OutgoingReply> RequestHandler::_answerCommand(ConnectionId connection,
                                                            const ClientMessage& command) {
  if (!Echoable(command.functionName) || !Echoable(command.timestamp)) {
    return _unreadable(connection,
                       "command name or time stamp holds a word reserved for other messages");
  }
  Reply reply;
  if (command.checksumValid) {
    reply = controller.Handle(command.functionName, command.parameters);
  } else {
    reply.state = std::to_string(ServerCodes::kChecksumMismatch);
  }
  _log(connection, command.functionName + " #" + command.timestamp + " " + Outcome(reply));
  if (reply.Pending()) {
    pending[reply.ticket] = PendingCommand{connection, command.timestamp, command.functionName};
    return std::nullopt;
  }
  return CommandAnswer(command.timestamp, command.functionName, reply);
}

OutgoingReply RequestHandler::_unreadable(ConnectionId connection, const std::string& why) {
  const std::string code = std::to_string(ServerCodes::kUnreadableMessage);
  _log(connection, "unreadable message (" + why + ") -> Error " + code);
  return OutgoingReply{"", ErrorMessage(code), false};
}

std::vector<std::pair<ConnectionId, OutgoingReply>> RequestHandler::Completed() {
  std::vector<std::pair<ConnectionId, OutgoingReply>> replies;
  for (const Completion& done : controller.Poll()) {
    const auto entry = pending.find(done.ticket);
    if (entry == pending.end()) {
      continue;
    }
    const PendingCommand& command = entry->second;
    _log(command.connection,
         command.functionName + " #" + command.timestamp + " " + Outcome(done.reply));
    replies.emplace_back(command.connection,
                         CommandAnswer(command.timestamp, command.functionName, done.reply));
    pending.erase(entry);
  }
  return replies;
}

void RequestHandler::Forget(ConnectionId connection) {
  for (auto entry = pending.begin(); entry != pending.end();) {
    if (entry->second.connection == connection) {
      controller.Cancel(entry->first);
      entry = pending.erase(entry);
    } else {
      ++entry;
    }
  }
}

std::optional<double> RequestHandler::SecondsUntilCompletion() const {
  return controller.SecondsUntilNextCompletion();
}

void RequestHandler::_log(ConnectionId connection, const std::string& line) const {
  LogConnection(log, connection, line);
}

}  // namespace tavsim
