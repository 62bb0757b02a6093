#include "client/Heart.h"

#include <algorithm>
#include <mutex>

#include "common/TavLogger.h"

Heart::Heart() : WorkerThread("Heart thread setup succeed.", "Heart thread shutdown succeed.") {}

Heart::~Heart() {
  Disable();
  _requestStop();
  Join();
}

void Heart::HeartEventRegister(void (*callback)()) {
  heartCallback = callback;
  contextHeartCallback = nullptr;
}

void Heart::HeartEventRegister(void (*callback)(void*), void* context) {
  contextHeartCallback = callback;
  heartContext = context;
  heartCallback = nullptr;
}

void Heart::WatchdogRegister(Clock::time_point (*lastHeard)(void*), void (*fellSilent)(void*)) {
  lastHeardCallback = lastHeard;
  fellSilentCallback = fellSilent;
}

void Heart::SetTiming(Clock::duration newPeriod, Clock::duration newSilenceLimit) {
  period = newPeriod.count();
  silenceLimit = newSilenceLimit.count();
}

void Heart::Enable() {
  {
    std::lock_guard<std::mutex> lock(flagMutex);
    active = true;
    ++enableCount;
    enabledAt = Clock::now();
  }
  flagChanged.notify_all();
}

void Heart::Disable() { _setActive(false); }

void Heart::Stop() {
  _requestStop();
  Join();
}

void Heart::_eventCall() {
  if (contextHeartCallback != nullptr) {
    contextHeartCallback(heartContext);
  } else if (heartCallback != nullptr) {
    heartCallback();
  }
}

Heart::Clock::time_point Heart::_silentAt() const {
  if (lastHeardCallback == nullptr || fellSilentCallback == nullptr) {
    return Clock::time_point::max();
  }
  return std::max(enabledAt, lastHeardCallback(heartContext)) +
         Clock::duration(silenceLimit.load());
}

// Arrivals do not wake the heart: at the silence deadline it looks again and, if something
// came meanwhile, sleeps on to the new one.
bool Heart::_work() {
  std::unique_lock<std::mutex> lock(flagMutex);
  const std::uint64_t periodOf = enableCount;
  const auto beatAt = Clock::now() + Clock::duration(period.load());
  const auto interrupted = [&] { return !active || enableCount != periodOf; };
  for (;;) {
    if (flagChanged.wait_until(lock, std::min(beatAt, _silentAt()), interrupted)) {
      return true;
    }
    const auto now = Clock::now();
    if (now >= _silentAt()) {
      // Called under the flag lock, so a Disable returns only once the report is made: it
      // can never land in the connection that follows.
      active = false;
      fellSilentCallback(heartContext);
      return false;
    }
    if (now >= beatAt) {
      break;
    }
  }
  lock.unlock();
  TavLogger::GetInstance().Info("Heartbeat.");
  _eventCall();
  return true;
}
