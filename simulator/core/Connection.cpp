#include "core/Connection.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace tavsim {

Connection::Connection(UniqueFd accepted) : socket(std::move(accepted)) {}

bool Connection::Write(const std::string& bytes) {
  std::size_t written = 0;
  while (socket.Valid() && written < bytes.size()) {
    const ssize_t sent =
        ::send(socket.Get(), bytes.data() + written, bytes.size() - written, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) {
      continue;
    }
    if (sent < 0) {
      return false;
    }
    written += static_cast<std::size_t>(sent);
  }
  return socket.Valid();
}

void Connection::ReadAvailable() {
  char chunk[4096];
  while (socket.Valid() && !peerClosed) {
    const ssize_t received = ::recv(socket.Get(), chunk, sizeof chunk, MSG_DONTWAIT);
    if (received > 0) {
      framer.Append(chunk, static_cast<std::size_t>(received));
      continue;
    }
    if (received < 0 && errno == EINTR) {
      continue;
    }
    if (received == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) {
      peerClosed = true;
    }
    return;
  }
}

std::optional<std::string> Connection::ReadMessage(std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    if (std::optional<std::string> message = framer.Next()) {
      return message;
    }
    if (!socket.Valid() || peerClosed) {
      return std::nullopt;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      return std::nullopt;
    }
    pollfd watch{socket.Get(), POLLIN, 0};
    const int ready = ::poll(&watch, 1, static_cast<int>(left.count()));
    if (ready > 0) {
      ReadAvailable();
    }
  }
}

void Connection::ShutdownWrite() {
  if (socket.Valid()) {
    ::shutdown(socket.Get(), SHUT_WR);
  }
}

void Connection::Close() { socket.Reset(); }

}  // namespace tavsim
