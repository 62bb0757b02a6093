#ifndef TAVCLIENT_COMMON_LOGPLACEMENT_H
#define TAVCLIENT_COMMON_LOGPLACEMENT_H

#include <ctime>
#include <memory>
#include <string>

#include "LogFile.h"

// The log file of a logger starting at `start`: in `directory` (the resource's log directory,
// made if need be) when a file opens there, otherwise in WorkingDirectoryBase() + "/log",
// otherwise none. An empty directory names none, so no log ever lands in "/".
//
// Whenever the log is not in `directory`, or `homeNotice` (why that directory is not under
// HOME) is not empty, one line on stderr says why and where the log goes, e.g.
// "tavclient: HOME is not usable (unset); logging to /work/TavClient/log" or
// "tavclient: cannot write a log file in /home/u/TavClient/log; logging nothing".
std::unique_ptr<LogFile> OpenLogFile(const std::string& directory, const std::string& homeNotice,
                                     std::time_t start);

#endif
