#include "support/ClientSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include "support/Polling.h"

namespace tavtest {

tavsim::UniqueFd ConnectLoopback(std::uint16_t port) {
  tavsim::UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (socket.Valid() && ::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    socket.Reset();
  }
  return socket;
}

::testing::AssertionResult WaitQueueEmpty(int socket, unsigned long request, std::chrono::milliseconds wait) {
  int queued = 0;
  if (PollUntil(wait, [&] { return ::ioctl(socket, request, &queued) == 0 && queued == 0; })) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << queued << " bytes still queued after " << wait.count() << " ms";
}

}  // namespace tavtest
