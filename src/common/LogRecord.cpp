#include "common/LogRecord.h"

const char* LogLevelName(LogLevel level) {
  switch (level) {
    case TAV_DEBUG:
      return "DEBUG";
    case TAV_INFO:
      return "INFO";
    case TAV_WARNING:
      return "WARNING";
    case TAV_FATAL:
      return "FATAL";
    case TAV_ERROR:
    default:
      return "ERROR";
  }
}

std::string FormatLogLine(const std::string& timeText, const log_message& record) {
  std::string line = timeText + " " + LogLevelName(record.level);
  if (record.level > TAV_INFO) {
    line += " (" + std::to_string(static_cast<uint32_t>(record.event)) + ")";
  }
  return line + ": " + record.text;
}
