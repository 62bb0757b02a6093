#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "common/LogFile.h"
#include "common/TavLogger.h"
#include "common/TavResource.h"
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
  return ::mktime(&local);
}

// Loads the directories with HOME at `home` (unset for nullopt), working in `work`, away from
// any properties file, and starts the logger.
void StartLogging(const std::optional<std::string>& home, const std::string& work) {
  const tavtest::ScopedHome homeVariable(home);
  const tavtest::WorkingDirectory inside(work);
  TavResource::GetInstance().Load();
  TavLogger::GetInstance().StartLogging();
}

// The logger is one per process: the first test that needs it starts it under a HOME of its
// own, whatever ran before. The directory outlives the logger, which drains at exit.
const std::string& LoggingHome() {
  static const tavtest::TemporaryDirectory home;
  static const bool started = (StartLogging(home.Path(), home.Path()), true);
  static_cast<void>(started);
  return home.Path();
}

using Files = std::map<std::string, std::string>;

Files FilesIn(const std::string& directory) {
  Files files;
  for (const auto& entry : fs::directory_iterator(directory)) {
    std::ostringstream content;
    content << std::ifstream(entry.path()).rdbuf();
    files[entry.path().filename().string()] = content.str();
  }
  return files;
}

// Log lines without their time ("YYYY-mm-dd HH:MM:SS "); a line without one is kept whole
// behind a "?".
std::vector<std::string> Untimed(std::vector<std::string> lines) {
  for (std::string& line : lines) {
    const bool timed = line.size() >= 20 && line[4] == '-' && line[10] == ' ' && line[16] == ':' &&
                       line[19] == ' ';
    line = timed ? line.substr(20) : "?" + line;
  }
  return lines;
}

// The texts logged since the record "<tag> begin", once a last record "<tag> end" is written.
std::vector<std::string> LoggedSince(const std::string& tag) {
  TavLogger::GetInstance().Info("%s end", tag.c_str());
  return Untimed(tavtest::LinesBetween(LoggingHome(), tag + " begin", tag + " end"));
}

// Expects the texts that begin with `head` to be "<head>0" ... "<head><count - 1>".
void ExpectNumbered(const std::vector<std::string>& texts, const std::string& head, int count) {
  std::vector<std::string> matching, expected;
  for (const std::string& text : texts) {
    if (text.compare(0, head.size(), head) == 0) {
      matching.push_back(text);
    }
  }
  for (int i = 0; i < count; ++i) {
    expected.push_back(head + std::to_string(i));
  }
  EXPECT_EQ(matching, expected) << head;
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
  EXPECT_EQ(FilesIn(directory.Path()),
            (Files{
                {"20260102030405.log", "first hour\nits last second\n"},
                {"20260102030405-1.log", "second hour\nits last second\n"},
                {"20260102030405-2.log", "fourth hour, after an idle one\n"},
            }));
}

// A line goes whole into the file that has room for it; only one longer than a file is cut.
TEST(LogFileTest, FillsEachFileWithWholeLines) {
  const std::time_t start = SampleStart();
  const tavtest::TemporaryDirectory directory;
  {
    LogFile file(directory.Path(), start, LogLimits{16, 8});
    file.Write(start, "one\ntwo\nthree\nfour");
    file.Write(start, std::string(20, 'x'));
    file.Write(start, "five\nsix");
  }
  EXPECT_EQ(FilesIn(directory.Path()), (Files{
                                           {"20260102030405.log", "one\ntwo\nthree\n"},
                                           {"20260102030405-1.log", "four\n"},
                                           {"20260102030405-2.log", std::string(15, 'x') + "\n"},
                                           {"20260102030405-3.log", "five\nsix\n"},
                                       }));
}

// Each new file leaves exactly the newest of the library's log files up to the limit, those of
// earlier runs included, and no other file is touched.
TEST(LogFileTest, EachNewFileKeepsExactlyTheNewestOfTheLibrarysFilesUpToTheLimit) {
  const std::time_t start = SampleStart();
  const tavtest::TemporaryDirectory directory;
  for (const char* name :
       {"20250101000000.log", "20250101000000-1.log", "20260102030405.txt", "notes.log"}) {
    std::ofstream(directory.Path() + "/" + name) << "x";
  }
  using Names = std::set<std::string>;
  const Names others{"20260102030405.txt", "notes.log"};
  const std::vector<Names> kept{
      {"20250101000000.log", "20250101000000-1.log", "20260102030405.log"},
      {"20250101000000-1.log", "20260102030405.log", "20260102030405-1.log"},
      {"20260102030405.log", "20260102030405-1.log", "20260102030405-2.log"},
      {"20260102030405-1.log", "20260102030405-2.log", "20260102030405-3.log"},
  };
  LogFile file(directory.Path(), start, LogLimits{1024, 3});
  for (std::size_t hour = 0; hour < kept.size(); ++hour) {
    if (hour > 0) {
      file.Write(start + static_cast<std::time_t>(hour) * kHour + 1, "a later hour");
    }
    Names expected = kept[hour];
    expected.insert(others.begin(), others.end());
    Names names;
    for (const auto& [name, content] : FilesIn(directory.Path())) {
      names.insert(name);
    }
    EXPECT_EQ(names, expected) << "with file " << hour;
  }
}

// Levels out of range are refused and leave everything logged, as by default.
TEST(TavLoggerTest, WritesTheLevelTheEventAboveInfoAndTheFormattedTextOfRecordsNotBelowItsLevel) {
  LoggingHome();
  TavLogger& logger = TavLogger::GetInstance();
  ASSERT_EQ(logger.GetLevel(), TAV_DEBUG);
  EXPECT_EQ(logger.SetLevel(-1), 1006011);
  EXPECT_EQ(logger.SetLevel(TAV_FATAL + 1), 1006011);
  logger.Info("format begin");
  logger.Info("format info");
  logger.Warning(7, "%s warning", "format");
  logger.Error(TAV_FATAL, -1, "format error");
  logger.Info("");
  logger.Info("%5d|%ld|%%d|%c|%f|%s|%u|plain dufsc|100%", 42, 42, 7, 'A', 1.5, "text", 3000000000u);
  ASSERT_EQ(logger.SetLevel(TAV_ERROR), 0);
  logger.Info("level info");
  logger.Warning(1, "level warning");
  logger.Error(TAV_DEBUG, 2, "level error");
  ASSERT_EQ(logger.SetLevel(TAV_DEBUG), 0);
  const std::vector<std::string> expected{
      "INFO: format info",
      "WARNING (7): format warning",
      "ERROR (4294967295): format error",
      "INFO: ",
      "INFO: 542|l42|7|65|1.500000|text|-1294967296|plain dufsc|100",
      "ERROR (2): level error",
  };
  EXPECT_EQ(LoggedSince("format"), expected);
}

TEST(TavLoggerTest, StartsOnceAndKeepsEveryRecordOfSeveralThreadsInTheirOrder) {
  LoggingHome();
  static int runs = 0;  // tells the records of a repeated run from the earlier ones
  const std::string tag = "threads" + std::to_string(++runs);
  const std::size_t threads = tavtest::ThreadCount();
  StartLogging(LoggingHome(), LoggingHome());
  constexpr int kThreads = 4, kRecords = 100;
  TavLogger::GetInstance().Info("%s begin", tag.c_str());
  std::vector<std::thread> producers;
  for (int t = 0; t < kThreads; ++t) {
    producers.emplace_back([&tag, t] {
      for (int i = 0; i < kRecords; ++i) {
        TavLogger::GetInstance().Info("%s %d:%d", tag.c_str(), t, i);
      }
    });
  }
  for (std::thread& producer : producers) {
    producer.join();
  }
  const std::vector<std::string> texts = LoggedSince(tag);
  for (int t = 0; t < kThreads; ++t) {
    ExpectNumbered(texts, "INFO: " + tag + " " + std::to_string(t) + ":", kRecords);
  }
  EXPECT_EQ(tavtest::ThreadCount(), threads);
  EXPECT_EQ(FilesIn(LoggingHome() + "/TavClient/log").size(), 1u);
}

// An exit test ends a child process that runs the test program again for that test alone, so
// its logger is fresh. Both children start early in one second (time() may lag the clock by a
// tick), so that they name the same file, and each writes everything it queued as it exits.
TEST(TavLoggerExitTest, TwoProcessesStartedInTheSameSecondKeepEveryLineOfBoth) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const tavtest::ExitTestDirectory home;
  constexpr int kRecords = 2000;
  EXPECT_EXIT(
      {
        std::this_thread::sleep_until(std::chrono::system_clock::from_time_t(::time(nullptr) + 1) +
                                      std::chrono::milliseconds(50));
        std::vector<pid_t> children;
        for (int c = 0; c < 2; ++c) {
          children.push_back(::fork());
          if (children.back() == 0) {
            StartLogging(home.Path(), home.Path());
            for (int i = 0; i < kRecords; ++i) {
              TavLogger::GetInstance().Info("child %d:%d", c, i);
            }
            std::exit(0);
          }
        }
        int failures = 0;
        for (const pid_t child : children) {
          int status = 0;
          failures += ::waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
                      WEXITSTATUS(status) != 0;
        }
        std::exit(failures);
      },
      ::testing::ExitedWithCode(0), ::testing::StrEq(""))
      << "a usable HOME needs no word on stderr";
  const std::vector<std::string> texts = Untimed(tavtest::LogLines(home.Path()));
  ExpectNumbered(texts, "INFO: child 0:", kRecords);
  ExpectNumbered(texts, "INFO: child 1:", kRecords);
  EXPECT_EQ(texts.size(), 2u * kRecords);
  EXPECT_EQ(FilesIn(home.Path() + "/TavClient/log").size(), 1u) << "both named one file";
}

// Each case logs from a child process, whose logger is fresh, in a directory of its own ("$" in
// the texts): HOME is "$/home" or unset, the working directory "$/work", `blocker` a regular
// file where the library would make a directory, TAVCLIENT_LOG_LEVEL `level` or unset. Without
// a usable HOME or log directory the log goes to the working directory, without that too
// nowhere; the line on stderr says which. The reasons a HOME is not usable are the resource's
// (see ResourceTest); one will do here.
TEST(TavLoggerExitTest, TakesItsLevelFromTheEnvironmentAndFallsBackFromAnUnusableHome) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::vector<std::string> both{"INFO: exit info", "WARNING (3): exit warning"};
  const struct {
    bool homeSet;
    std::string blocker;
    const char* level;
    std::string stderrText, logUnder;
    std::vector<std::string> logged;
  } cases[] = {
      {true, "", "2", "", "home", {"WARNING (3): exit warning"}},
      {true, "", "debug",
       "TAVCLIENT_LOG_LEVEL=debug is not a level from 0 to 4; logging everything", "home", both},
      {false, "", nullptr, "HOME is not usable (unset); logging to $/work/TavClient/log", "work",
       both},
      // "log" exists, so the directory counts as made, but no file opens inside it.
      {true, "home/TavClient/log", nullptr,
       "cannot write a log file in $/home/TavClient/log; logging to $/work/TavClient/log", "work",
       both},
      {false, "work/TavClient", nullptr, "HOME is not usable (unset); logging nothing", "work", {}},
  };
  const tavtest::ExitTestDirectory shared;
  for (std::size_t index = 0; index < std::size(cases); ++index) {
    const auto& c = cases[index];
    SCOPED_TRACE(c.stderrText);
    // getcwd, which the library asks, resolves links.
    const std::string directory =
        fs::canonical(shared.Path()).string() + "/" + std::to_string(index);
    fs::create_directories(directory + "/home/TavClient");
    fs::create_directories(directory + "/work");
    if (!c.blocker.empty()) {
      std::ofstream(directory + "/" + c.blocker) << "x";
    }
    const std::string placed = std::regex_replace(c.stderrText, std::regex(R"(\$)"), directory);
    EXPECT_EXIT(
        {
          c.level ? ::setenv("TAVCLIENT_LOG_LEVEL", c.level, 1) : ::unsetenv("TAVCLIENT_LOG_LEVEL");
          fs::current_path(directory + "/work");  // where the logger thread looks for it
          StartLogging(c.homeSet ? std::optional(directory + "/home") : std::nullopt,
                       directory + "/work");
          TavLogger::GetInstance().Info("exit info");
          TavLogger::GetInstance().Warning(3, "exit warning");
          std::exit(0);
        },
        ::testing::ExitedWithCode(0),
        ::testing::StrEq(placed.empty() ? "" : "tavclient: " + placed + "\n"));
    EXPECT_EQ(Untimed(tavtest::LogLines(directory + "/" + c.logUnder)), c.logged);
  }
}
