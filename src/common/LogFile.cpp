#include "common/LogFile.h"

#include "common/LocalTime.h"

namespace {
constexpr double kSecondsPerFile = 3600.0;
}

bool IsRotationDue(std::time_t start, std::time_t now, int counter) {
  return std::difftime(now, start) > counter * kSecondsPerFile;
}

LogFile::LogFile(const std::string& directory, std::time_t startTime)
    : base(directory + "/" + LogFileStamp(startTime)), start(startTime),
      stream(base + ".log", std::ios::out | std::ios::trunc) {}

void LogFile::Write(std::time_t now, const std::string& line) {
  if (IsRotationDue(start, now, counter)) {
    stream.close();
    stream.open(base + "-" + std::to_string(counter) + ".log", std::ios::out | std::ios::trunc);
    ++counter;
  }
  stream << line << '\n';
  stream.flush();
}
