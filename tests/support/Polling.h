#ifndef TAVTEST_SUPPORT_POLLING_H
#define TAVTEST_SUPPORT_POLLING_H

#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include <chrono>
#include <thread>

namespace tavtest {

// For conditions nobody signals (kernel queues, thread lists, log files): checks `condition`
// every millisecond until it holds or `wait` has passed. Returns its last value.
template <typename Condition>
bool PollUntil(std::chrono::milliseconds wait, Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + wait;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

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
