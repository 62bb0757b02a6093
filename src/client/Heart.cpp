#include "client/Heart.h"

#include <algorithm>
#include <mutex>

#include "client/Client.h"
#include "common/TavLogger.h"

Heart::Heart() : WorkerThread("Heart thread setup succeed.", "Heart thread shutdown succeed.") {}

Heart::~Heart() {
  Disable();
  _requestStop();
  Join();
}

void Heart::HeartEventRegister(void (*callback)()) { heartCallback = callback; }

void Heart::ReportTo(Client& owner) { session = &owner; }

void Heart::UseClock(SessionClock& newClock) { clock = &newClock; }

void Heart::SetTiming(Clock::duration newPeriod, Clock::duration newSilenceLimit) {
  period = newPeriod.count();
  silenceLimit = newSilenceLimit.count();
}

void Heart::Enable() {
  std::uint64_t next = 0;
  {
    std::lock_guard<std::mutex> lock(flagMutex);
    next = enabledFor + 1;
  }
  Enable(next);
}

void Heart::Enable(std::uint64_t connection) {
  {
    std::lock_guard<std::mutex> lock(flagMutex);
    active = true;
    enabledFor = connection;
    enabledAt = clock.load()->Now();
    periodStart = enabledAt;
  }
  flagChanged.notify_all();
}

void Heart::Disable() { _setActive(false); }

void Heart::Wake() {
  std::lock_guard<std::mutex> lock(flagMutex);
  flagChanged.notify_all();
}

void Heart::Stop() {
  _requestStop();
  Join();
}

void Heart::_eventCall() {
  if (session != nullptr) {
    session->_heartCallback();
  } else if (heartCallback != nullptr) {
    heartCallback();
  }
}

Heart::Clock::time_point Heart::_silentAt() const {
  if (session == nullptr) {
    return Clock::time_point::max();
  }
  return std::max(enabledAt, session->_lastHeard()) + Clock::duration(silenceLimit.load());
}

// Arrivals do not wake the heart: at the silence deadline it looks again and, if something
// came meanwhile, sleeps on to the new one.
bool Heart::_work() {
  const SessionClock& time = *clock.load();
  std::unique_lock<std::mutex> lock(flagMutex);
  const std::uint64_t connection = enabledFor;
  const auto beatAt = periodStart + Clock::duration(period.load());
  const auto interrupted = [&] { return !active || enabledFor != connection; };
  for (;;) {
    // One wait per round, so that every wake-up looks at the clock and the deadlines again.
    const auto due = std::min(beatAt, _silentAt());
    if (!interrupted() && time.Now() < due) {
      flagChanged.wait_until(lock, time.WakeAt(due));
    }
    if (interrupted()) {
      return true;
    }
    const auto now = time.Now();
    if (now >= _silentAt()) {
      active = false;
      lock.unlock();
      TavLogger::GetInstance().Error(TAV_ERROR, RobotEvents::kControllerSilent,
                                     "Heart thread: the controller fell silent.");
      session->_eventCallback(connection, RobotEvents::kControllerSilent);
      return false;
    }
    if (now >= beatAt) {
      break;
    }
  }
  lock.unlock();
  TavLogger::GetInstance().Info("Heartbeat.");
  _eventCall();
  lock.lock();
  if (!interrupted()) {
    periodStart = time.Now();
  }
  return true;
}
