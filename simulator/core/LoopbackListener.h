#ifndef TAVSIM_CORE_LOOPBACKLISTENER_H
#define TAVSIM_CORE_LOOPBACKLISTENER_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "core/Connection.h"
#include "core/UniqueFd.h"

namespace tavsim {

// A TCP listener on 127.0.0.1 with a port chosen by the system. Throws std::system_error
// when the socket cannot be set up.
class LoopbackListener {
public:
  LoopbackListener();
  // Listens on `address` (IPv4, dotted) and `port` instead; port 0 lets the system choose.
  LoopbackListener(const std::string& address, std::uint16_t port);

  std::uint16_t Port() const { return port; }
  int NativeHandle() const { return socket.Get(); }

  // The next client to connect, or nothing when none came within `timeout`.
  std::optional<Connection> Accept(std::chrono::milliseconds timeout);

private:
  UniqueFd socket;
  std::uint16_t port;
};

// A loopback port with a bound socket that does not listen: connecting to it is refused, and
// no other socket can take the port while this object lives.
class RefusingPort {
public:
  RefusingPort();
  std::uint16_t Port() const { return port; }

private:
  UniqueFd socket;
  std::uint16_t port;
};

// A plain TCP socket connected to 127.0.0.1:port, the client's end. Invalid when the
// connection failed.
UniqueFd ConnectLoopback(std::uint16_t port);

}  // namespace tavsim

#endif
