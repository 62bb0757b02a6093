#ifndef TAVTEST_SUPPORT_CLIENTSOCKET_H
#define TAVTEST_SUPPORT_CLIENTSOCKET_H

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

#include "core/UniqueFd.h"

namespace tavtest {

// A plain TCP socket connected to 127.0.0.1:port, for driving a Sender or Receiver directly.
// Invalid when the connection failed.
tavsim::UniqueFd ConnectLoopback(std::uint16_t port);

// Waits until the socket queue that ioctl `request` measures is empty: FIONREAD, bytes not yet
// read from the socket; SIOCOUTQ, bytes written but not yet taken by the peer. Both together
// turn one write into exactly one read on the other side.
::testing::AssertionResult WaitQueueEmpty(int socket, unsigned long request, std::chrono::milliseconds wait);

}  // namespace tavtest

#endif
