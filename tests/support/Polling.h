#ifndef TAVTEST_SUPPORT_POLLING_H
#define TAVTEST_SUPPORT_POLLING_H

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

}  // namespace tavtest

#endif
