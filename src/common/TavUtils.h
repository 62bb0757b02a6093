#ifndef TAVCLIENT_COMMON_TAVUTILS_H
#define TAVCLIENT_COMMON_TAVUTILS_H

#include <cstdint>
#include <string>

#include "common/RobotEvent.h"

// The request counter: the last value handed out by GetTimeStamp, 0 at load time.
extern int32_t _TavTimeStamp;

// Next request number, 1 to 10240 and then 1 again; it reads no clock.
int GetTimeStamp();

// Sleeps whole seconds: the fraction is dropped, so 0.5 returns at once.
void TimeSleep(double seconds);

// Reads a decimal event code the way strtol does: "12abc" is 12, "abc" and "" are 0.
Robot_Event GetRobotEvent(std::string text);

// Creates every directory along the path, parents first, mode 0775; "/" and "\" both
// separate. 0, or 1005011 for a path over 256 characters or a mkdir that failed.
int createDirectory(const std::string& path);

#endif
