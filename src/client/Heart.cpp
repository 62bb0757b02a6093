#include "client/Heart.h"

#include <mutex>

#include "common/TavLogger.h"

Heart::Heart(std::chrono::milliseconds heartPeriod)
    : WorkerThread("Heart thread setup succeed.", "Heart thread shutdown succeed."), period(heartPeriod) {}

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

void Heart::Enable() {
  {
    std::lock_guard<std::mutex> lock(flagMutex);
    active = true;
    ++enableCount;
  }
  flagChanged.notify_all();
}

void Heart::Disable() {
  _setActive(false);
}

bool Heart::IsEnabled() const {
  return active;
}

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

bool Heart::_work() {
  std::unique_lock<std::mutex> lock(flagMutex);
  const std::uint64_t periodOf = enableCount;
  const auto periodEnd = std::chrono::steady_clock::now() + period;
  const bool interrupted =
      flagChanged.wait_until(lock, periodEnd, [&] { return !active || enableCount != periodOf; });
  lock.unlock();
  if (!interrupted) {
    TavLogger::GetInstance().Info("Heartbeat.");
    _eventCall();
  }
  return true;
}
