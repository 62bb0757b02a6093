#ifndef TAVCLIENT_COMMON_REPEATSUMMARY_H
#define TAVCLIENT_COMMON_REPEATSUMMARY_H

#include <chrono>
#include <cstdint>

#include "LogRecord.h"

// Keeps one kind of log line that a peer can make us repeat at will (a reply nobody asked for,
// bytes that make no message) to at most one line a second. The first occurrence after a quiet
// second is logged in full by the caller; later ones are counted, and the count goes out as one
// line, e.g. "Receiver thread recv 1234 more msgs nobody asked for in the last 1 s.", once the
// second is over (at the next occurrence or Tick) or at Flush.
//
// One thread uses an object.
class RepeatSummary {
public:
  using Clock = std::chrono::steady_clock;

  // `format` takes the count and the seconds it covers, in that order ("%d ... %d s.").
  RepeatSummary(LogLevel level, Robot_Event event, const char* format);

  // Whether the caller logs this occurrence in full; otherwise it is counted.
  bool Admit(Clock::time_point now = Clock::now());
  // Logs the count if its second is over.
  void Tick(Clock::time_point now = Clock::now());
  // Logs the count now, if there is one.
  void Flush(Clock::time_point now = Clock::now());

private:
  void _logHeld(Clock::time_point now);

  const LogLevel level;
  const Robot_Event event;
  const char* const format;
  std::int64_t held = 0;
  Clock::time_point lastLine;
  bool logged = false;
};

#endif
