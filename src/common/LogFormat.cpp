#include "common/LogFormat.h"

#include <cstdio>

namespace {
const char* LevelName(LogLevel level) {
  switch (level) {
    case TAV_DEBUG: return "DEBUG";
    case TAV_INFO: return "INFO";
    case TAV_WARNING: return "WARNING";
    case TAV_FATAL: return "FATAL";
    case TAV_ERROR: break;
  }
  return "ERROR";
}

std::string FixedSix(double value) {
  char buffer[512];
  std::snprintf(buffer, sizeof buffer, "%f", value);
  return buffer;
}
}  // namespace

std::string FormatLogText(const char* format, va_list arguments) {
  std::string text;
  if (format == nullptr) return text;
  bool converting = false;
  for (const char* p = format; *p != '\0'; ++p) {
    const char c = *p;
    if (c == '%') {
      converting = true;
      continue;
    }
    if (!converting) {
      text += c;
      continue;
    }
    switch (c) {
      case 'd':
      case 'u':
      case 'c':
        text += std::to_string(va_arg(arguments, int));
        converting = false;
        break;
      case 'f':
        text += FixedSix(va_arg(arguments, double));
        converting = false;
        break;
      case 's': {
        const char* s = va_arg(arguments, const char*);
        text += s != nullptr ? s : "(null)";
        converting = false;
        break;
      }
      default:
        text += c;
    }
  }
  return text;
}

std::string ComposeLogLine(const std::string& time, LogLevel level, Robot_Event event,
                           const std::string& text) {
  std::string line = time + " " + LevelName(level);
  if (level > TAV_INFO) line += " (" + std::to_string(static_cast<uint32_t>(event)) + ")";
  return line + ": " + text;
}
