#ifndef TAVCLIENT_COMMON_LOGFORMAT_H
#define TAVCLIENT_COMMON_LOGFORMAT_H

#include <cstdarg>
#include <cstdint>
#include <string>

#include "common/RobotEvent.h"

enum LogLevel : int32_t {
  TAV_DEBUG = 0,
  TAV_INFO = 1,
  TAV_WARNING = 2,
  TAV_ERROR = 3,
  TAV_FATAL = 4,
};

// The logger's own reading of a format: after "%", the letters d, u and c print an int in
// signed decimal, f a double with six decimals, s a C string; any other character is printed
// as it stands and leaves the conversion pending ("%5d" of 42 is "542"), "%%" prints nothing.
std::string FormatLogText(const char* format, va_list arguments);

// "time LEVEL: text", with " (event)" after the level name above INFO.
std::string ComposeLogLine(const std::string& time, LogLevel level, Robot_Event event,
                           const std::string& text);

#endif
