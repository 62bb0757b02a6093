#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>

#include "common/TavLogger.h"
#include "common/TavResource.h"
#include "support/TemporaryDirectory.h"
#include "support/TemporaryHome.h"

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::EndsWith;

namespace {

std::set<std::string> RootEntries() {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator("/"))
    names.insert(entry.path().filename().string());
  return names;
}

}  // namespace

// The logger starts once per process, so each case runs in the child process of an exit test,
// working in "work" of a directory it shares with the parent; beside "work" lies a regular file.
class LoggerFallbackTest : public ::testing::Test {
protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    fs::create_directories(work);
    std::ofstream(file) << "x";
  }

  // Expects a child that loads the directories under `home`, starts the logger and logs one
  // record to end normally with exactly `stderrText` on stderr.
  void ExpectLoggingChild(const std::optional<std::string>& home, const std::string& stderrText) {
    EXPECT_EXIT(
        {
          const tavtest::ScopedHome homeVariable(home);
          const tavtest::WorkingDirectory inside(work);
          TavResource::GetInstance().Load();
          TavLogger::GetInstance().StartLogging();
          TavLogger::GetInstance().Info("fallback record");
          std::exit(0);
        },
        ::testing::ExitedWithCode(0), ::testing::StrEq(stderrText));
  }

  const std::set<std::string> rootBefore = RootEntries();
  const tavtest::ExitTestDirectory shared;
  // getcwd, which the library asks, resolves links.
  const std::string directory = fs::canonical(shared.Path()).string();
  const std::string work = directory + "/work";
  const std::string file = directory + "/file";
  const std::string workLog = work + "/TavClient/log";
};

// The reasons a HOME is not usable are the resource's (see ResourceTest); one will do here.
TEST_F(LoggerFallbackTest, AnUnusableHomeSendsTheLogToTheWorkingDirectoryAndSaysSoOnce) {
  ExpectLoggingChild(std::nullopt,
                     "tavclient: HOME is not usable (unset); logging to " + workLog + "\n");
  EXPECT_THAT(tavtest::LogLines(work), ElementsAre(EndsWith(" INFO: fallback record")));
  EXPECT_EQ(RootEntries(), rootBefore);
}

// "log" exists, so the directory counts as made, but no file opens inside it.
TEST_F(LoggerFallbackTest, ALogDirectoryThatTakesNoFileSendsTheLogToTheWorkingDirectory) {
  const std::string home = directory + "/home";
  fs::create_directories(home + "/TavClient");
  std::ofstream(home + "/TavClient/log") << "x";
  ExpectLoggingChild(home, "tavclient: cannot write a log file in " + home +
                               "/TavClient/log; logging to " + workLog + "\n");
  EXPECT_THAT(tavtest::LogLines(work), ElementsAre(EndsWith(" INFO: fallback record")));
  EXPECT_EQ(RootEntries(), rootBefore);
}

TEST_F(LoggerFallbackTest, WithNoDirectoryLeftToLogIntoLogsNothingAndSaysSo) {
  std::ofstream(work + "/TavClient") << "x";
  ExpectLoggingChild(std::nullopt, "tavclient: HOME is not usable (unset); logging nothing\n");
  EXPECT_TRUE(fs::is_regular_file(work + "/TavClient"));
  EXPECT_EQ(RootEntries(), rootBefore);
}
