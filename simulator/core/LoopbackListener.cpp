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

// A TCP socket bound to 127.0.0.1 on a free port; the port is written to `port`.
UniqueFd BindLoopback(std::uint16_t& port) {
  UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!socket.Valid()) {
    ThrowErrno("socket");
  }
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = 0;
  if (::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    ThrowErrno("bind 127.0.0.1");
  }
  socklen_t length = sizeof address;
  if (::getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    ThrowErrno("getsockname");
  }
  port = ntohs(address.sin_port);
  return socket;
}

}  // namespace

LoopbackListener::LoopbackListener() : socket_(BindLoopback(port_)) {
  if (::listen(socket_.Get(), SOMAXCONN) != 0) {
    ThrowErrno("listen");
  }
}

std::optional<Connection> LoopbackListener::Accept(std::chrono::milliseconds timeout) {
  pollfd watch{socket_.Get(), POLLIN, 0};
  const int ready = ::poll(&watch, 1, static_cast<int>(timeout.count()));
  if (ready <= 0) {
    return std::nullopt;
  }
  UniqueFd client(::accept4(socket_.Get(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!client.Valid()) {
    return std::nullopt;
  }
  const int noDelay = 1;
  ::setsockopt(client.Get(), IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay);
  return Connection(std::move(client));
}

RefusingPort::RefusingPort() : socket_(BindLoopback(port_)) {}

}  // namespace tavsim
