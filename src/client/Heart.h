#ifndef TAVCLIENT_CLIENT_HEART_H
#define TAVCLIENT_CLIENT_HEART_H

#include <atomic>
#include <chrono>
#include <cstdint>

#include "WorkerThread.h"

// The heartbeat thread and the session's watchdog. While enabled it calls the heartbeat
// callback at the end of every period, on its own thread, and starts the next period when the
// callback has returned. With a watchdog registered it also watches when the controller last
// sent anything: once that (or the enable, if later) lies the silence limit back, it runs the
// silence callback once and disables itself. It sleeps on a condition variable in between, so
// a disable ends the period at once and an immediate re-enable starts a fresh one.
//
// Stop does not look past an enabled heart: it blocks until the heart is disabled.
class Heart : public WorkerThread {
public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds kPeriod{9};
  static constexpr std::chrono::seconds kSilenceLimit{20};

  Heart();
  ~Heart() override;

  // Register before Start; the second form passes `context` to every call.
  void HeartEventRegister(void (*callback)());
  void HeartEventRegister(void (*callback)(void*), void* context);
  // The watchdog's callbacks, called with the context of the second form above.
  void WatchdogRegister(Clock::time_point (*lastHeard)(void*), void (*fellSilent)(void*));
  // The period applies from the next period, the silence limit from the next wake.
  void SetTiming(Clock::duration period, Clock::duration silenceLimit);
  void Enable();
  void Disable();
  void Stop();
  void _eventCall();

protected:
  bool _work() override;

private:
  // When the controller will have been silent for the limit; never without a watchdog.
  Clock::time_point _silentAt() const;

  std::atomic<Clock::rep> period{Clock::duration(kPeriod).count()};
  std::atomic<Clock::rep> silenceLimit{Clock::duration(kSilenceLimit).count()};
  // Counts enables, so a disable and re-enable that the thread did not see still restarts
  // the period. Both guarded by flagMutex.
  std::uint64_t enableCount = 0;
  Clock::time_point enabledAt;
  void (*heartCallback)() = nullptr;
  void (*contextHeartCallback)(void*) = nullptr;
  void* heartContext = nullptr;
  Clock::time_point (*lastHeardCallback)(void*) = nullptr;
  void (*fellSilentCallback)(void*) = nullptr;
};

#endif
