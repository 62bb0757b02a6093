#ifndef TAVCLIENT_COMMON_LOGRECORD_H
#define TAVCLIENT_COMMON_LOGRECORD_H

#include <cstdint>
#include <deque>
#include <string>

#include "RobotEvent.h"

enum LogLevel : int32_t {
  TAV_DEBUG = 0,
  TAV_INFO = 1,
  TAV_WARNING = 2,
  TAV_ERROR = 3,
  TAV_FATAL = 4,
};

// One queued log record.
struct log_message {
  LogLevel level;
  // The level argument of Error; kept with the record but not printed.
  LogLevel detail;
  // Printed in parentheses for levels above INFO.
  Robot_Event event;
  std::string text;
};

// "DEBUG", "INFO", "WARNING", "ERROR" or "FATAL"; any other value is "ERROR".
const char* LogLevelName(LogLevel level);

// The lines for records written at one time, joined by line ends, without one after the last.
// A record's line is "<time> INFO: text", or for levels above INFO "<time> WARNING (7): text",
// the event printed unsigned.
std::string FormatLogLines(const std::string& timeText, const std::deque<log_message>& records);

#endif
