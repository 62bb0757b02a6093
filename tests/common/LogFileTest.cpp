#include <gtest/gtest.h>
#include <time.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "common/LocalTime.h"
#include "common/LogFile.h"
#include "common/LogRecord.h"
#include "support/TemporaryDirectory.h"

namespace {

constexpr std::time_t kHour = 3600;

// 2026-01-02 03:04:05 in local time.
std::time_t SampleStart() {
  std::tm local{};
  ::strptime("2026-01-02 03:04:05", "%Y-%m-%d %H:%M:%S", &local);
  local.tm_isdst = -1;
  return std::mktime(&local);
}

TEST(LogFileTest, NamesFilesAfterTheStartAndMovesOnWithTheFirstRecordOfEachLaterHour) {
  const std::time_t start = SampleStart();
  EXPECT_FALSE(IsRotationDue(start, start + 2 * kHour, 2));
  EXPECT_TRUE(IsRotationDue(start, start + 2 * kHour + 1, 2));

  const tavtest::TemporaryDirectory directory;
  {
    LogFile file(directory.Path(), start);
    file.Write(start, "first hour");
    file.Write(start + kHour, "its last second");
    file.Write(start + kHour + 1, "second hour");
    file.Write(start + 3 * kHour + 5, "fourth hour, after an idle one");
  }
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(directory.Path())) {
    std::ostringstream content;
    content << std::ifstream(entry.path()).rdbuf();
    files[entry.path().filename().string()] = content.str();
  }
  const std::map<std::string, std::string> expected{
      {"20260102030405.log", "first hour\nits last second\n"},
      {"20260102030405-1.log", "second hour\n"},
      {"20260102030405-2.log", "fourth hour, after an idle one\n"},
  };
  EXPECT_EQ(files, expected);
}

TEST(LogFileTest, LinesCarryTheTimeTheLevelAndAboveInfoTheEvent) {
  EXPECT_EQ(LogLineTime(SampleStart()), "2026-01-02 03:04:05");
  EXPECT_EQ(FormatLogLine("T", {TAV_DEBUG, TAV_DEBUG, 5, "text"}), "T DEBUG: text");
  EXPECT_EQ(FormatLogLine("T", {static_cast<LogLevel>(9), TAV_DEBUG, 2, "x"}), "T ERROR (2): x");
}

}  // namespace
