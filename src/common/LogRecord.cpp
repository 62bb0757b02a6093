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

namespace {

void AppendLogLine(std::string& out, const std::string& timeText, const log_message& record) {
  out += timeText;
  out += ' ';
  out += LogLevelName(record.level);
  if (record.level > TAV_INFO) {
    out += " (";
    out += std::to_string(static_cast<uint32_t>(record.event));
    out += ')';
  }
  out += ": ";
  out += record.text;
}

}  // namespace

std::string FormatLogLines(const std::string& timeText, const std::deque<log_message>& records) {
  std::string lines;
  const char* separator = "";
  for (const log_message& record : records) {
    lines += separator;
    AppendLogLine(lines, timeText, record);
    separator = "\n";
  }
  return lines;
}
