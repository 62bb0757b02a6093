#include "core/LoopbackListener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace tavsim {

namespace {

[[noreturn]] void ThrowErrno(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A TCP socket bound to `host`:`port`; port 0 takes a free one.
UniqueFd Bind(const std::string& host, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  if (::inet_pton(AF_INET, host.c_str(), &address.sin_addr) != 1) {
    throw std::system_error(EINVAL, std::generic_category(), "not an IPv4 address: '" + host + "'");
  }
  UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!socket.Valid()) {
    ThrowErrno("socket");
  }
  // A fixed port can be taken again at once after a restart.
  const int reuse = port != 0 ? 1 : 0;
  ::setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
  if (::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    const int error = errno;
    throw std::system_error(error, std::generic_category(),
                            "bind " + host + ":" + std::to_string(port));
  }
  return socket;
}

UniqueFd BindLoopback() { return Bind("127.0.0.1", 0); }

std::uint16_t BoundPort(const UniqueFd& socket) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  if (::getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    ThrowErrno("getsockname");
  }
  return ntohs(address.sin_port);
}

}  // namespace

LoopbackListener::LoopbackListener() : LoopbackListener("127.0.0.1", 0) {}

LoopbackListener::LoopbackListener(const std::string& address, std::uint16_t requestedPort)
    : socket(Bind(address, requestedPort)), port(BoundPort(socket)) {
  if (::listen(socket.Get(), SOMAXCONN) != 0) {
    ThrowErrno("listen");
  }
}

std::optional<Connection> LoopbackListener::Accept(std::chrono::milliseconds timeout) {
  pollfd watch{socket.Get(), POLLIN, 0};
  const int ready = ::poll(&watch, 1, static_cast<int>(timeout.count()));
  if (ready <= 0) {
    return std::nullopt;
  }
  UniqueFd client(::accept4(socket.Get(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!client.Valid()) {
    return std::nullopt;
  }
  const int noDelay = 1;
  ::setsockopt(client.Get(), IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay);
  return Connection(std::move(client));
}

RefusingPort::RefusingPort() : socket(BindLoopback()), port(BoundPort(socket)) {}

UniqueFd ConnectLoopback(std::uint16_t port) {
  UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (socket.Valid() &&
      ::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    socket.Reset();
  }
  return socket;
}

}  // namespace tavsim
