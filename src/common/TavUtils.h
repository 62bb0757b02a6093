#ifndef TAVCLIENT_COMMON_TAVUTILS_H
#define TAVCLIENT_COMMON_TAVUTILS_H

#include <cstdint>
#include <string>

#include "RobotEvent.h"

// The last request number handed out by GetTimeStamp; 0 before the first.
extern int32_t _TavTimeStamp;

// The next request number: 1, 2, ..., 10240, then 1 again. Reads no clock.
int GetTimeStamp();

// Sleeps whole seconds: the fraction is dropped, so 1.9 sleeps one second and 0.5 not at all.
// Values below one second, negative ones included, return at once.
void TimeSleep(double seconds);

// The text read as a base-10 number in the manner of strtol: leading blanks and a sign are
// allowed, reading stops at the first non-digit, and a text without digits gives 0.
Robot_Event GetRobotEvent(std::string text);

// Creates every directory along the path, parents first, with mode 0775. Both '/' and '\\'
// separate components. 0, or 1005011 for a path over 256 characters or a failed mkdir.
int createDirectory(const std::string& path);

#endif
