#ifndef TAVCLIENT_CLIENT_HEART_H
#define TAVCLIENT_CLIENT_HEART_H

#include <chrono>
#include <cstdint>

#include "WorkerThread.h"

// The heartbeat thread: while enabled it calls the heartbeat callback at the end of every
// period, on its own thread, and starts the next period when the callback has returned.
// It sleeps on a condition variable in between, so a disable ends the period at once and an
// immediate re-enable starts a fresh one.
//
// Stop does not look past an enabled heart: it blocks until the heart is disabled.
class Heart : public WorkerThread {
public:
  static constexpr std::chrono::seconds kPeriod{9};

  explicit Heart(std::chrono::milliseconds period = kPeriod);
  ~Heart() override;

  // Register before Start; the second form passes `context` to every call.
  void HeartEventRegister(void (*callback)());
  void HeartEventRegister(void (*callback)(void*), void* context);
  void Enable();
  void Disable();
  bool IsEnabled() const;
  void Stop();
  void _eventCall();

protected:
  bool _work() override;

private:
  const std::chrono::milliseconds period;
  // Counts enables, so a disable and re-enable that the thread did not see still restarts
  // the period. Guarded by flagMutex.
  std::uint64_t enableCount = 0;
  void (*heartCallback)() = nullptr;
  void (*contextHeartCallback)(void*) = nullptr;
  void* heartContext = nullptr;
};

#endif
