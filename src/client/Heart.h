#ifndef TAVCLIENT_CLIENT_HEART_H
#define TAVCLIENT_CLIENT_HEART_H

#include <atomic>
#include <chrono>
#include <cstdint>

#include "SessionClock.h"
#include "WorkerThread.h"

class Client;

// The heartbeat thread and the session's watchdog. While enabled it calls the heartbeat
// callback at the end of every period, on its own thread, and starts the next period when the
// callback has returned. Reporting to a session it also watches when the controller last sent
// anything: once that (or the enable, if later) lies the silence limit back, it reports
// 1003041 on the connection it was enabled for and disables itself. It sleeps on a condition
// variable in between, so a disable ends the period at once and a new enable starts a fresh one.
//
// Stop does not look past an enabled heart: it blocks until the heart is disabled.
class Heart : public WorkerThread {
public:
  using Clock = SessionClock::Steady;
  static constexpr std::chrono::seconds kPeriod{9};
  static constexpr std::chrono::seconds kSilenceLimit{20};

  Heart();
  ~Heart() override;

  // Register before Start.
  void HeartEventRegister(void (*callback)());
  void ReportTo(Client& session);
  // The clock periods and silence are measured on; it must outlive the heart.
  void UseClock(SessionClock& clock);
  // The period applies from the next period, the silence limit from the next wake.
  void SetTiming(Clock::duration period, Clock::duration silenceLimit);
  // A period of the heart's own numbering, or one for `connection`.
  void Enable();
  void Enable(std::uint64_t connection);
  void Disable();
  // Ends the current wait, so that a jump of the clock is seen.
  void Wake();
  void Stop();
  void _eventCall();

protected:
  bool _work() override;

private:
  // When the controller will have been silent for the limit; never without a session.
  Clock::time_point _silentAt() const;

  std::atomic<Clock::rep> period{Clock::duration(kPeriod).count()};
  std::atomic<Clock::rep> silenceLimit{Clock::duration(kSilenceLimit).count()};
  std::atomic<SessionClock*> clock{&SessionClock::SteadyClock()};
  // Guarded by flagMutex: the connection of the enable, when it came, and when the current
  // period began (at the enable, then at the end of every beat).
  std::uint64_t enabledFor = 0;
  Clock::time_point enabledAt;
  Clock::time_point periodStart;
  void (*heartCallback)() = nullptr;
  Client* session = nullptr;
};

#endif
