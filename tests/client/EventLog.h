#ifndef TAVTEST_CLIENT_EVENTLOG_H
#define TAVTEST_CLIENT_EVENTLOG_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

#include "common/RobotEvent.h"

// Collects the events a worker reports; Record fits the workers' plain-function callback.
class EventLog {
public:
  static void Record(Robot_Event event) {
    {
      std::lock_guard<std::mutex> lock(mutex());
      events().push_back(event);
    }
    changed().notify_all();
  }

  static void Clear() {
    std::lock_guard<std::mutex> lock(mutex());
    events().clear();
  }

  // Waits until `event` has been recorded at least once.
  static bool WaitFor(Robot_Event event, std::chrono::milliseconds wait = std::chrono::seconds(5)) {
    std::unique_lock<std::mutex> lock(mutex());
    return changed().wait_for(lock, wait, [event] { return CountLocked(event) > 0; });
  }

  static std::size_t Count(Robot_Event event) {
    std::lock_guard<std::mutex> lock(mutex());
    return CountLocked(event);
  }

private:
  static std::size_t CountLocked(Robot_Event event) {
    std::size_t count = 0;
    for (const Robot_Event recorded : events()) {
      count += recorded == event ? 1U : 0U;
    }
    return count;
  }
  static std::mutex& mutex() {
    static std::mutex instance;
    return instance;
  }
  static std::condition_variable& changed() {
    static std::condition_variable instance;
    return instance;
  }
  static std::vector<Robot_Event>& events() {
    static std::vector<Robot_Event> instance;
    return instance;
  }
};

#endif
