#include "common/RepeatSummary.h"

#include "common/TavLogger.h"

namespace {
constexpr std::chrono::seconds kLinePeriod{1};
}

RepeatSummary::RepeatSummary(LogLevel lineLevel, Robot_Event lineEvent, const char* lineFormat)
    : level(lineLevel), event(lineEvent), format(lineFormat) {}

bool RepeatSummary::Admit(Clock::time_point now) {
  if (logged && now - lastLine < kLinePeriod) {
    ++held;
    return false;
  }
  if (held > 0) {
    ++held;
    _logHeld(now);
    return false;
  }
  logged = true;
  lastLine = now;
  return true;
}

void RepeatSummary::Tick(Clock::time_point now) {
  if (held > 0 && now - lastLine >= kLinePeriod) {
    _logHeld(now);
  }
}

void RepeatSummary::Flush(Clock::time_point now) {
  if (held > 0) {
    _logHeld(now);
  }
}

// The seconds are rounded up, so that the line never claims a shorter time than it covers.
void RepeatSummary::_logHeld(Clock::time_point now) {
  const auto seconds = std::chrono::ceil<std::chrono::seconds>(now - lastLine).count();
  const int count = held > INT32_MAX ? INT32_MAX : static_cast<int>(held);
  TavLogger& logger = TavLogger::GetInstance();
  if (level >= TAV_ERROR) {
    logger.Error(level, event, format, count, static_cast<int>(seconds));
  } else if (level == TAV_WARNING) {
    logger.Warning(event, format, count, static_cast<int>(seconds));
  } else {
    logger.Info(format, count, static_cast<int>(seconds));
  }
  held = 0;
  lastLine = now;
}
