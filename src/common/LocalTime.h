#ifndef TAVCLIENT_COMMON_LOCALTIME_H
#define TAVCLIENT_COMMON_LOCALTIME_H

#include <ctime>
#include <string>

// The stamp that names log files, "%Y%m%d%H%M%S" in local time.
std::string LogFileStamp(std::time_t time);

// The time at the head of a log line, "%Y-%m-%d %H:%M:%S" in local time.
std::string LogLineTime(std::time_t time);

#endif
