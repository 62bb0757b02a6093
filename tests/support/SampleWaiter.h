#ifndef TAVTEST_SUPPORT_SAMPLEWAITER_H
#define TAVTEST_SUPPORT_SAMPLEWAITER_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

#include "StateMonitor.h"

namespace tavtest {

// Subscribes to a monitor and keeps every sample it is handed, so that a test awaits a
// condition on them instead of sleeping.
class SampleWaiter {
public:
  explicit SampleWaiter(tavclient::StateMonitor& watched) : monitor(watched) {
    id = monitor.Subscribe([this](const tavclient::StateSample& sample) {
      {
        std::lock_guard<std::mutex> lock(mutex);
        samples.push_back(sample);
      }
      arrived.notify_all();
    });
  }
  ~SampleWaiter() { monitor.Unsubscribe(id); }
  SampleWaiter(const SampleWaiter&) = delete;
  SampleWaiter& operator=(const SampleWaiter&) = delete;

  // Waits until a sample handed over from now on satisfies `condition`; false after `wait`.
  bool WaitFor(const std::function<bool(const tavclient::StateSample&)>& condition,
               std::chrono::milliseconds wait = std::chrono::seconds(5)) {
    std::unique_lock<std::mutex> lock(mutex);
    std::size_t checked = samples.size();
    return arrived.wait_for(lock, wait, [&] {
      for (; checked < samples.size(); ++checked) {
        if (condition(samples[checked])) {
          return true;
        }
      }
      return false;
    });
  }

  std::vector<tavclient::StateSample> Samples() {
    std::lock_guard<std::mutex> lock(mutex);
    return samples;
  }

private:
  tavclient::StateMonitor& monitor;
  std::mutex mutex;
  std::condition_variable arrived;
  std::vector<tavclient::StateSample> samples;
  int id = 0;
};

}  // namespace tavtest

#endif
