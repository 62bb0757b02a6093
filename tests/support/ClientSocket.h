#ifndef TAVTEST_SUPPORT_CLIENTSOCKET_H
#define TAVTEST_SUPPORT_CLIENTSOCKET_H

#include <gtest/gtest.h>

#include <chrono>

namespace tavtest {

// Waits until the socket queue that ioctl `request` measures is empty: FIONREAD, bytes not yet
// read from the socket; SIOCOUTQ, bytes written but not yet taken by the peer. Both together
// turn one write into exactly one read on the other side.
::testing::AssertionResult WaitQueueEmpty(int socket, unsigned long request, std::chrono::milliseconds wait);

}  // namespace tavtest

#endif
