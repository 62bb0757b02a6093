#include "client/SocketCalls.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace SocketCalls {

bool WriteAll(int socket, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t sent = ::send(socket, bytes, size, MSG_NOSIGNAL);
    if (sent < 0) {
      if (errno == EINTR) {
        continue;
      }
      return false;
    }
    bytes += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

ssize_t ReadAvailable(int socket, char* buffer, std::size_t size) {
  ssize_t received = 0;
  do {
    received = ::recv(socket, buffer, size, MSG_DONTWAIT);
  } while (received < 0 && errno == EINTR);
  return received;
}

// An interrupted poll starts again with the whole time-out: a signal only stretches the wait
// by what had passed, and the callers bound their waits by their own deadlines.
bool WaitReadable(int socket, int wake, std::chrono::milliseconds timeout) {
  pollfd watched[2] = {{socket, POLLIN, 0}, {wake, POLLIN, 0}};
  const nfds_t count = wake >= 0 ? 2 : 1;
  const int milliseconds =
      timeout.count() < 0 ? -1 : static_cast<int>(std::min<long long>(timeout.count(), INT_MAX));
  int ready = 0;
  do {
    ready = ::poll(watched, count, milliseconds);
  } while (ready < 0 && errno == EINTR);
  return ready > 0 && watched[0].revents != 0;
}

int Connect(int socket, const void* address, unsigned length) {
  if (::connect(socket, static_cast<const sockaddr*>(address), length) == 0) {
    return 0;
  }
  if (errno != EINTR) {
    return -1;
  }
  // The connection goes on in the background: wait for it and read its outcome.
  pollfd watched{socket, POLLOUT, 0};
  int ready = 0;
  do {
    ready = ::poll(&watched, 1, -1);
  } while (ready < 0 && errno == EINTR);
  int error = 0;
  socklen_t size = sizeof error;
  if (ready < 0 || ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) {
    return -1;
  }
  return 0;
}

}  // namespace SocketCalls
