#include "PingPong.h"

#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <stdexcept>

#include "core/LoopbackListener.h"

namespace bench {

namespace {

bool SendAll(int socket, const std::string& bytes) {
  return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
         static_cast<ssize_t>(bytes.size());
}

// Reads exactly `count` bytes into `buffer`; false when the peer closed or a read failed.
bool ReceiveAll(int socket, std::string& buffer, std::size_t count) {
  std::size_t received = 0;
  while (received < count) {
    const ssize_t read = ::recv(socket, buffer.data() + received, count - received, 0);
    if (read <= 0) {
      return false;
    }
    received += static_cast<std::size_t>(read);
  }
  return true;
}

}  // namespace

// The peer's socket gets TCP_NODELAY from the listener, as the simulator's does; the client's
// stays as plain as the library's.
PingPong::PingPong(std::size_t requestBytes, std::size_t replyBytes)
    : request(requestBytes, 'q'), reply(replyBytes, 'r'), replyBuffer(replyBytes, '\0') {
  tavsim::LoopbackListener listener;
  client = tavsim::ConnectLoopback(listener.Port());
  server = listener.Accept(std::chrono::seconds(5));
  if (!client.Valid() || !server) {
    throw std::runtime_error("ping-pong connection failed");
  }
  peer = std::thread(&PingPong::Serve, this);
}

PingPong::~PingPong() {
  ::shutdown(client.Get(), SHUT_RDWR);
  peer.join();
}

void PingPong::Serve() {
  const int socket = server->NativeHandle();
  std::string buffer(request.size(), '\0');
  while (ReceiveAll(socket, buffer, request.size()) && SendAll(socket, reply)) {
  }
}

int PingPong::RoundTrip() {
  errno = 0;
  if (!SendAll(client.Get(), request) || !ReceiveAll(client.Get(), replyBuffer, reply.size())) {
    return errno != 0 ? errno : ECONNRESET;
  }
  return 0;
}

}  // namespace bench
