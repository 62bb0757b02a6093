#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "common/LocalTime.h"
#include "common/LogFile.h"
#include "common/LogRecord.h"
#include "common/TavLogger.h"
#include "common/TavResource.h"
#include "support/Polling.h"
#include "support/ProcessProbe.h"
#include "support/TemporaryHome.h"

namespace fs = std::filesystem;

namespace {

constexpr std::time_t kHour = 3600;

// 2026-01-02 03:04:05 in local time.
std::time_t SampleStart() {
  std::tm local{};
  ::strptime("2026-01-02 03:04:05", "%Y-%m-%d %H:%M:%S", &local);
  local.tm_isdst = -1;
  return std::mktime(&local);
}

// Loads the directories under `home` (working there, away from any properties file) and starts
// the logger.
void StartLoggingUnder(const std::string& home) {
  const tavtest::ScopedHome homeVariable(home);
  const tavtest::WorkingDirectory inside(home);
  ASSERT_EQ(TavResource::GetInstance().Load(), 0);
  TavLogger::GetInstance().StartLogging();
}

// The logger is one per process: the first test that needs it starts it under a HOME of its
// own, whatever ran before. The directory outlives the logger, which drains at exit.
const std::string& LoggingHome() {
  static const tavtest::TemporaryDirectory home;
  static const bool started = (StartLoggingUnder(home.Path()), true);
  static_cast<void>(started);
  return home.Path();
}

// The logged lines without their time ("YYYY-mm-dd HH:MM:SS "); a line without one is kept
// whole behind a "?".
std::vector<std::string> LoggedTexts(const std::string& home) {
  std::vector<std::string> texts = tavtest::LogLines(home);
  for (std::string& line : texts) {
    const bool timed = line.size() >= 20 && line[4] == '-' && line[10] == ' ' && line[16] == ':' && line[19] == ' ';
    line = timed ? line.substr(20) : "?" + line;
  }
  return texts;
}

// Queues a last record and returns the logged texts once it is written: records are written in
// queue order, so everything queued before it is there too.
std::vector<std::string> LoggedThroughNow(const std::string& tag) {
  TavLogger::GetInstance().Info("%s end", tag.c_str());
  std::vector<std::string> texts;
  EXPECT_TRUE(tavtest::PollUntil(std::chrono::seconds(10), [&] {
    texts = LoggedTexts(LoggingHome());
    return !texts.empty() && texts.back() == "INFO: " + tag + " end";
  }));
  return texts;
}

}  // namespace

TEST(LogFileTest, NamesFilesAfterTheStartAndMovesOnWithTheFirstRecordOfEachLaterHour) {
  const std::time_t start = SampleStart();
  const tavtest::TemporaryDirectory directory;
  {
    LogFile file(directory.Path(), start);
    file.Write(start, "first hour");
    file.Write(start + kHour, "its last second");
    file.Write(start + kHour + 1, "second hour");
    file.Write(start + 2 * kHour, "its last second");
    file.Write(start + 3 * kHour + 5, "fourth hour, after an idle one");
  }
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(directory.Path())) {
    std::ostringstream content;
    content << std::ifstream(entry.path()).rdbuf();
    files[entry.path().filename().string()] = content.str();
  }
  const std::map<std::string, std::string> expected{
      {"20260102030405.log", "first hour\nits last second\n"},
      {"20260102030405-1.log", "second hour\nits last second\n"},
      {"20260102030405-2.log", "fourth hour, after an idle one\n"},
  };
  EXPECT_EQ(files, expected);
}

TEST(LogFileTest, LinesCarryTheTimeTheLevelAndAboveInfoTheEvent) {
  EXPECT_EQ(LogLineTime(SampleStart()), "2026-01-02 03:04:05");
  EXPECT_EQ(FormatLogLines("T", {{TAV_DEBUG, TAV_DEBUG, 5, "text"}}), "T DEBUG: text");
  EXPECT_EQ(FormatLogLines("T", {{static_cast<LogLevel>(9), TAV_DEBUG, 2, "x"}, {TAV_INFO, TAV_DEBUG, 0, ""}}),
            "T ERROR (2): x\nT INFO: ");
}

TEST(TavLoggerTest, WritesTheLevelTheEventAboveInfoAndTheFormattedText) {
  LoggingHome();
  TavLogger& logger = TavLogger::GetInstance();
  logger.Info("format info");
  logger.Warning(7, "%s warning", "format");
  logger.Error(TAV_FATAL, -1, "format error");
  logger.Info("");
  logger.Info("%5d|%ld|%%d|%c|%f|%s|%u|plain dufsc|100%", 42, 42, 7, 'A', 1.5, "text", 3000000000u);
  const std::vector<std::string> expected{
      "INFO: format info",
      "WARNING (7): format warning",
      "ERROR (4294967295): format error",
      "INFO: ",
      "INFO: 542|l42|7|65|1.500000|text|-1294967296|plain dufsc|100",
      "INFO: format end",
  };
  const std::vector<std::string> texts = LoggedThroughNow("format");
  EXPECT_TRUE(texts.size() >= expected.size() && std::equal(expected.rbegin(), expected.rend(), texts.rbegin()));
}

TEST(TavLoggerTest, StartsOnceAndKeepsEveryRecordOfSeveralThreadsInTheirOrder) {
  LoggingHome();
  static int runs = 0;  // tells the records of a repeated run from the earlier ones
  const std::string tag = "threads" + std::to_string(++runs);
  const std::size_t threads = tavtest::ThreadCount();
  StartLoggingUnder(LoggingHome());
  constexpr int kThreads = 4, kRecords = 100;
  std::vector<std::thread> producers;
  for (int t = 0; t < kThreads; ++t) {
    producers.emplace_back([&tag, t] {
      for (int i = 0; i < kRecords; ++i) TavLogger::GetInstance().Info("%s %d:%d", tag.c_str(), t, i);
    });
  }
  for (std::thread& producer : producers) producer.join();
  const std::vector<std::string> texts = LoggedThroughNow(tag);
  for (int t = 0; t < kThreads; ++t) {
    std::vector<std::string> ofThread, expected;
    const std::string head = "INFO: " + tag + " " + std::to_string(t) + ":";
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(ofThread),
                 [&](const std::string& text) { return text.compare(0, head.size(), head) == 0; });
    for (int i = 0; i < kRecords; ++i) expected.push_back(head + std::to_string(i));
    EXPECT_EQ(ofThread, expected);
  }
  EXPECT_EQ(tavtest::ThreadCount(), threads);
  EXPECT_EQ(std::distance(fs::directory_iterator(LoggingHome() + "/TavClient/log"), fs::directory_iterator()), 1);
}

// An exit test ends a child process that runs the test program again for that test alone, so
// its logger is fresh.
TEST(TavLoggerExitTest, WritesEverythingQueuedBeforeTheProcessEnds) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const tavtest::ExitTestDirectory home;
  constexpr int kRecords = 500;
  EXPECT_EXIT(
      {
        StartLoggingUnder(home.Path());
        for (int i = 0; i < kRecords; ++i) TavLogger::GetInstance().Info("exit %d", i);
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), ::testing::StrEq("")) << "a usable HOME needs no word on stderr";
  std::vector<std::string> expected;
  for (int i = 0; i < kRecords; ++i) expected.push_back("INFO: exit " + std::to_string(i));
  EXPECT_EQ(LoggedTexts(home.Path()), expected);
}

TEST(TavLoggerExitTest, ALoggerThatNeverStartedDoesNotHoldUpExit) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        TavLogger::GetInstance().Info("queued, never written");
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}
