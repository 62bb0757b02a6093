#ifndef TAVTEST_SUPPORT_MANUALCLOCK_H
#define TAVTEST_SUPPORT_MANUALCLOCK_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>

#include "client/SessionClock.h"

namespace tavtest {

// A session clock that stands still until the test moves it. Every wait of the session asks
// it when to look again (WakeAt) and is woken when it moves, so a test can see which deadline
// a wait has set (AwaitWaitFor) and move the clock to exactly that instant.
class ManualClock : public SessionClock {
public:
  TimePoint Now() const override {
    std::lock_guard<std::mutex> lock(mutex);
    return now;
  }

  TimePoint WakeAt(TimePoint deadline) const override {
    {
      std::lock_guard<std::mutex> lock(mutex);
      ++waitsFor[deadline];
    }
    asked.notify_all();
    // Only a move wakes the wait; the hour is a backstop that no test reaches.
    return Steady::now() + std::chrono::hours(1);
  }

  void Subscribe(const void* key, std::function<void()> wake) override {
    std::lock_guard<std::mutex> lock(mutex);
    subscribers[key] = std::move(wake);
  }

  void Unsubscribe(const void* key) override {
    std::lock_guard<std::mutex> lock(mutex);
    subscribers.erase(key);
  }

  void Advance(Steady::duration step) {
    std::map<const void*, std::function<void()>> waking;
    {
      std::lock_guard<std::mutex> lock(mutex);
      now += step;
      waking = subscribers;
    }
    for (const auto& [key, wake] : waking) {
      wake();
    }
  }

  // Waits until some wait has asked to wake at `deadline` `times` times in all: after a move
  // that did not reach it, a wait asks again once it has looked.
  bool AwaitWaitFor(TimePoint deadline, int times = 1,
                    std::chrono::milliseconds wait = std::chrono::seconds(5)) const {
    std::unique_lock<std::mutex> lock(mutex);
    return asked.wait_for(lock, wait, [&] { return waitsFor[deadline] >= times; });
  }

  int WaitsFor(TimePoint deadline) const {
    std::lock_guard<std::mutex> lock(mutex);
    return waitsFor[deadline];
  }

private:
  mutable std::mutex mutex;
  mutable std::condition_variable asked;
  // Far from the steady clock's epoch, which stands for "never heard from".
  TimePoint now{std::chrono::hours(1000)};
  mutable std::map<TimePoint, int> waitsFor;
  std::map<const void*, std::function<void()>> subscribers;
};

}  // namespace tavtest

#endif
