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

ServerLoop::ServerLoop(const ServerOptions& options, SimulatedController& controller, FaultInjector& faults)
    : listener_(options.host, options.port),
      handler_(controller, options.log),
      faults_(faults),
      log_(options.log),
      maxMessageBytes_(options.maxMessageBytes) {}

void ServerLoop::Stop() {
  stopping_ = true;
  wakeup_.Notify();
}

void ServerLoop::Run() {
  while (!stopping_) {
    std::vector<pollfd> watches = Watches();
    ::poll(watches.data(), watches.size(), PollTimeout(std::chrono::steady_clock::now()));
    if (stopping_) {
      break;
    }
    if (watches[0].revents != 0) {
      wakeup_.Drain();
    }
    // The watches list the sessions in map order; none were added since.
    std::size_t watch = 2;
    for (auto session = sessions_.begin(); session != sessions_.end(); ++watch) {
      if ((watches[watch].revents & (POLLIN | POLLHUP | POLLERR)) != 0 && !Serve(session->first, session->second)) {
        session = Close(session, "closed by the client");
        continue;
      }
      ++session;
    }
    DeliverCompletions();
    const SteadyTime now = std::chrono::steady_clock::now();
    for (auto session = sessions_.begin(); session != sessions_.end();) {
      if (!Flush(session->first, session->second, now)) {
        session = Close(session, "closed by the simulator");
        continue;
      }
      ++session;
    }
    if ((watches[1].revents & POLLIN) != 0) {
      Accept();
    }
  }
  while (!sessions_.empty()) {
    Close(sessions_.begin(), "closed: simulator stopping");
  }
}

std::vector<pollfd> ServerLoop::Watches() const {
  std::vector<pollfd> watches{{wakeup_.NativeHandle(), POLLIN, 0}, {listener_.NativeHandle(), POLLIN, 0}};
  for (const auto& [id, session] : sessions_) {
    const short events = static_cast<short>(POLLIN | (session.outbox.Blocked() ? POLLOUT : 0));
    watches.push_back(pollfd{session.connection.NativeHandle(), events, 0});
  }
  return watches;
}

int ServerLoop::PollTimeout(SteadyTime now) const {
  int timeout = -1;
  const auto shorten = [&timeout](int candidate) {
    if (timeout < 0 || candidate < timeout) {
      timeout = candidate;
    }
  };
  for (const auto& [id, session] : sessions_) {
    if (const std::optional<SteadyTime> due = session.outbox.NextDue()) {
      shorten(MillisecondsUntil(*due, now));
    }
  }
  if (const std::optional<double> seconds = handler_.SecondsUntilCompletion()) {
    // At least a millisecond: a completion that is due now was collected before this poll.
    shorten(std::max(1, static_cast<int>(std::min(std::ceil(*seconds * 1000.0), 60'000.0))));
  }
  return timeout;
}

void ServerLoop::Accept() {
  while (std::optional<Connection> connection = listener_.Accept(std::chrono::milliseconds(0))) {
    const ConnectionId id = nextId_++;
    Log(id, "connected from " + PeerName(connection->NativeHandle()));
    sessions_.emplace(id, Session{std::move(*connection), Outbox()});
    connectionCount_ = sessions_.size();
  }
}

bool ServerLoop::Serve(ConnectionId id, Session& session) {
  Connection& connection = session.connection;
  connection.ReadAvailable();
  while (!session.cutOff) {
    std::optional<std::string> message = connection.NextMessage();
    if (!message) {
      break;
    }
    std::optional<OutgoingReply> reply;
    try {
      reply = handler_.Answer(id, *message);
    } catch (const std::exception& error) {
      Log(id, std::string("failed to answer a message: ") + error.what());
      reply = OutgoingReply{"", ErrorMessage(std::to_string(ServerCodes::kUnreadableMessage)), false};
    }
    if (reply) {
      Deliver(id, session, *reply);
    }
  }
  if (!session.cutOff && connection.Framer().Buffered() > maxMessageBytes_) {
    Log(id, "more than " + std::to_string(maxMessageBytes_) + " bytes without a message end");
    const std::string error = ErrorMessage(std::to_string(ServerCodes::kUnreadableMessage));
    session.outbox.Schedule(OutboxEntry{std::chrono::steady_clock::now(), {error}, std::chrono::milliseconds(0), true});
    session.cutOff = true;
  }
  return !connection.PeerClosed();
}

void ServerLoop::Deliver(ConnectionId id, Session& session, const OutgoingReply& reply) {
  std::optional<Fault> fault;
  if (!reply.answers.empty()) {
    fault = faults_.Take(reply.answers, reply.hasChecksum);
  }
  if (fault) {
    Log(id, "fault: " + Describe(*fault));
  }
  if (std::optional<OutboxEntry> entry = PlanDelivery(reply, fault, std::chrono::steady_clock::now())) {
    session.outbox.Schedule(std::move(*entry));
  }
}

void ServerLoop::DeliverCompletions() {
  for (const auto& [id, reply] : handler_.Completed()) {
    const auto session = sessions_.find(id);
    if (session != sessions_.end()) {
      Deliver(id, session->second, reply);
    }
  }
}

bool ServerLoop::Flush(ConnectionId id, Session& session, SteadyTime now) {
  switch (session.outbox.Flush(session.connection.NativeHandle(), now)) {
    case Outbox::Progress::Broken:
      Log(id, "write failed");
      return false;
    case Outbox::Progress::CloseNow:
      return false;
    case Outbox::Progress::Waiting:
    case Outbox::Progress::Blocked:
      break;
  }
  return true;
}

ServerLoop::Sessions::iterator ServerLoop::Close(Sessions::iterator session, const std::string& why) {
  // Bytes left unread would make the close a reset, which can cost the client the replies
  // it has not read yet.
  session->second.connection.ReadAvailable();
  handler_.Forget(session->first);
  Log(session->first, why);
  auto next = sessions_.erase(session);
  connectionCount_ = sessions_.size();
  return next;
}

void ServerLoop::Log(ConnectionId id, const std::string& line) const {
  LogConnection(log_, id, line);
}

}  // namespace tavsim
