#ifndef TAVCLIENT_CLIENT_CALLINTERRUPTION_H
#define TAVCLIENT_CLIENT_CALLINTERRUPTION_H

#include <chrono>

// A check that a thread can install for the waits of its own calls, e.g. a language binding
// that must notice a signal while a call waits for its reply. While one is installed a waiting
// call runs it at least every kCheckInterval; once it returns true the call ends as a reply
// time-out would (1003031): the late reply is dropped and the session stays usable.
namespace CallInterruption {

constexpr std::chrono::milliseconds kCheckInterval{50};
using Check = bool (*)();

// Installs `check` for the calls of this thread while it lives.
class Scope {
public:
  explicit Scope(Check check);
  ~Scope();
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

private:
  Check previous;
};

bool Installed();

// The check as one wait runs it: not before the wait has lasted kCheckInterval, and then once
// an interval, so that a call that gets its reply at once never runs it.
class Watch {
public:
  Watch();
  // Runs the installed check if it is due; false when it is not, or there is none.
  bool Requested();

private:
  std::chrono::steady_clock::time_point due;
};

}  // namespace CallInterruption

#endif
