#include "server/ServerLoop.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cmath>
#include <exception>
#include <utility>

#include "core/ControllerReplies.h"
#include "server/Delivery.h"
#include "server/ServerCodes.h"

namespace tavsim {

namespace {

std::string PeerName(int fd) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  char text[INET_ADDRSTRLEN] = "?";
  if (::getpeername(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
    ::inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
  }
  return std::string(text) + ":" + std::to_string(ntohs(address.sin_port));
}

int MillisecondsUntil(SteadyTime when, SteadyTime now) {
  if (when <= now) {
    return 0;
  }
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(when - now);
  return static_cast<int>(std::min<std::chrono::milliseconds::rep>(wait.count(), 60'000));
}

}  // namespace

ServerLoop::ServerLoop(const ServerOptions& options, SimulatedController& controller,
                       FaultInjector& injector)
    : listener(options.host, options.port),
      handler(controller, options.log),
      faults(injector),
      log(options.log),
      maxMessageBytes(options.maxMessageBytes) {}

void ServerLoop::Stop() {
  stopping = true;
  wakeup.Notify();
}

void ServerLoop::Run() {
  while (!stopping) {
    std::vector<pollfd> watches = _watches();
    ::poll(watches.data(), watches.size(), _pollTimeout(std::chrono::steady_clock::now()));
    if (stopping) {
      break;
    }
    if (watches[0].revents != 0) {
      wakeup.Drain();
    }
    // The watches list the sessions in map order; none were added since.
    std::size_t watch = 2;
    for (auto session = sessions.begin(); session != sessions.end(); ++watch) {
      if ((watches[watch].revents & (POLLIN | POLLHUP | POLLERR)) != 0 &&
          !_serve(session->first, session->second)) {
        session = _close(session, "closed by the client");
        continue;
      }
      ++session;
    }
    _deliverCompletions();
    const SteadyTime now = std::chrono::steady_clock::now();
    for (auto session = sessions.begin(); session != sessions.end();) {
      if (!_flush(session->first, session->second, now)) {
        session = _close(session, "closed by the simulator");
        continue;
      }
      ++session;
    }
    if ((watches[1].revents & POLLIN) != 0) {
      _accept();
    }
  }
  while (!sessions.empty()) {
    _close(sessions.begin(), "closed: simulator stopping");
  }
}

std::vector<pollfd> ServerLoop::_watches() const {
  std::vector<pollfd> watches{{wakeup.NativeHandle(), POLLIN, 0},
                              {listener.NativeHandle(), POLLIN, 0}};
  for (const auto& [id, session] : sessions) {
    const short events = static_cast<short>(POLLIN | (session.outbox.Blocked() ? POLLOUT : 0));
    watches.push_back(pollfd{session.connection.NativeHandle(), events, 0});
  }
  return watches;
}

int ServerLoop::_pollTimeout(SteadyTime now) const {
  int timeout = -1;
  const auto shorten = [&timeout](int candidate) {
    if (timeout < 0 || candidate < timeout) {
      timeout = candidate;
    }
  };
  for (const auto& [id, session] : sessions) {
    if (const std::optional<SteadyTime> due = session.outbox.NextDue()) {
      shorten(MillisecondsUntil(*due, now));
    }
  }
  if (const std::optional<double> seconds = handler.SecondsUntilCompletion()) {
    // At least a millisecond: a completion that is due now was collected before this poll.
    shorten(std::max(1, static_cast<int>(std::min(std::ceil(*seconds * 1000.0), 60'000.0))));
  }
  return timeout;
}

void ServerLoop::_accept() {
  while (std::optional<Connection> connection = listener.Accept(std::chrono::milliseconds(0))) {
    const ConnectionId id = nextId++;
    _log(id, "connected from " + PeerName(connection->NativeHandle()));
    sessions.emplace(id, Session{std::move(*connection), Outbox()});
    connectionCount = sessions.size();
  }
}

bool ServerLoop::_serve(ConnectionId id, Session& session) {
  Connection& connection = session.connection;
  connection.ReadAvailable();
  while (!session.cutOff) {
    std::optional<std::string> message = connection.NextMessage();
    if (!message) {
      break;
    }
    std::optional<OutgoingReply> reply;
    try {
      reply = handler.Answer(id, *message);
    } catch (const std::exception& error) {
      _log(id, std::string("failed to answer a message: ") + error.what());
      reply =
          OutgoingReply{"", ErrorMessage(std::to_string(ServerCodes::kUnreadableMessage)), false};
    }
    if (reply) {
      _deliver(id, session, *reply);
    }
  }
  if (!session.cutOff && connection.Framer().Buffered() > maxMessageBytes) {
    _log(id, "more than " + std::to_string(maxMessageBytes) + " bytes without a message end");
    const std::string error = ErrorMessage(std::to_string(ServerCodes::kUnreadableMessage));
    session.outbox.Schedule(
        OutboxEntry{std::chrono::steady_clock::now(), {error}, std::chrono::milliseconds(0), true});
    session.cutOff = true;
  }
  return !connection.PeerClosed();
}

void ServerLoop::_deliver(ConnectionId id, Session& session, const OutgoingReply& reply) {
  std::optional<Fault> fault;
  if (!reply.answers.empty()) {
    fault = faults.Take(reply.answers, reply.hasChecksum);
  }
  if (fault) {
    _log(id, "fault: " + Describe(*fault));
  }
  if (std::optional<OutboxEntry> entry =
          PlanDelivery(reply, fault, std::chrono::steady_clock::now())) {
    session.outbox.Schedule(std::move(*entry));
  }
}

void ServerLoop::_deliverCompletions() {
  for (const auto& [id, reply] : handler.Completed()) {
    const auto session = sessions.find(id);
    if (session != sessions.end()) {
      _deliver(id, session->second, reply);
    }
  }
}

bool ServerLoop::_flush(ConnectionId id, Session& session, SteadyTime now) {
  switch (session.outbox.Flush(session.connection.NativeHandle(), now)) {
    case Outbox::Progress::Broken:
      _log(id, "write failed");
      return false;
    case Outbox::Progress::CloseNow:
      return false;
    case Outbox::Progress::Waiting:
    case Outbox::Progress::Blocked:
      break;
  }
  return true;
}

ServerLoop::Sessions::iterator ServerLoop::_close(Sessions::iterator session,
                                                  const std::string& why) {
  // Bytes left unread would make the close a reset, which can cost the client the replies
  // it has not read yet.
  session->second.connection.ReadAvailable();
  handler.Forget(session->first);
  _log(session->first, why);
  auto next = sessions.erase(session);
  connectionCount = sessions.size();
  return next;
}

void ServerLoop::_log(ConnectionId id, const std::string& line) const {
  LogConnection(log, id, line);
}

}  // namespace tavsim
