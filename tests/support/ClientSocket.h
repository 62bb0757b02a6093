#ifndef TAVTEST_SUPPORT_CLIENTSOCKET_H
#define TAVTEST_SUPPORT_CLIENTSOCKET_H

#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include <chrono>

#include "support/Polling.h"

namespace tavtest {

// Waits until the socket queue that ioctl `request` measures is empty: FIONREAD, bytes not yet
// read from the socket; SIOCOUTQ, bytes written but not yet taken by the peer. Both together
// turn one write into exactly one read on the other side.
inline ::testing::AssertionResult WaitQueueEmpty(int socket, unsigned long request,
                                                 std::chrono::milliseconds wait) {
  int queued = 0;
  if (PollUntil(wait, [&] { return ::ioctl(socket, request, &queued) == 0 && queued == 0; })) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure()
         << queued << " bytes still queued after " << wait.count() << " ms";
}

}  // namespace tavtest

#endif
