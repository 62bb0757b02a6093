#ifndef TAVCLIENT_CLIENT_SESSIONCLOCK_H
#define TAVCLIENT_CLIENT_SESSIONCLOCK_H

#include <chrono>
#include <functional>

// The time a session measures: heartbeat periods, the silence limit, reply time-outs. It is the
// steady clock, unless a test gives the session one that moves only when told, which makes
// timing exact and instant.
class SessionClock {
public:
  using Steady = std::chrono::steady_clock;
  using TimePoint = Steady::time_point;

  virtual ~SessionClock() = default;
  virtual TimePoint Now() const { return Steady::now(); }
  // The steady-clock time by which a wait for `deadline` of this clock must look again. A clock
  // that jumps wakes its subscribers instead, so their waits need no earlier end.
  virtual TimePoint WakeAt(TimePoint deadline) const { return deadline; }
  // `wake` is called, under `key`, whenever the clock jumps; the steady clock never does.
  virtual void Subscribe(const void* key, std::function<void()> wake) {
    static_cast<void>(key);
    static_cast<void>(wake);
  }
  virtual void Unsubscribe(const void* key) { static_cast<void>(key); }

  // The steady clock, shared by every session that was given no other.
  static SessionClock& SteadyClock() {
    static SessionClock clock;
    return clock;
  }
};

#endif
