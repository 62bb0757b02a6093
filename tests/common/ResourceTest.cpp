#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/TavProperties.h"
#include "common/TavResource.h"
#include "common/TavUtils.h"
#include "support/TemporaryDirectory.h"
#include "support/TemporaryHome.h"

namespace fs = std::filesystem;

TEST(TavUtilsTest, TimeStampCountsToTenThousandTwoHundredFortyThenWraps) {
  _TavTimeStamp = 0;
  int mismatches = 0;
  for (int expected = 1; expected <= 10240; ++expected) mismatches += GetTimeStamp() != expected;
  EXPECT_EQ(mismatches, 0);
  EXPECT_EQ(GetTimeStamp(), 1);
}

TEST(TavUtilsTest, RobotEventReadsLikeStrtol) {
  EXPECT_EQ(GetRobotEvent("12abc"), 12);
  EXPECT_EQ(GetRobotEvent(" -3"), -3);
  EXPECT_EQ(GetRobotEvent("abc"), 0);
  EXPECT_EQ(GetRobotEvent(""), 0);
}

TEST(TavUtilsTest, CreateDirectoryMakesParentsFirstOnBothSeparatorsUpToTwoHundredFiftySixCharacters) {
  const tavtest::TemporaryDirectory temporary;
  const std::string& base = temporary.Path();
  EXPECT_EQ(createDirectory(base + "/a/b/c"), 0);
  EXPECT_EQ(createDirectory(base + "/a/b/c"), 0) << "an existing tree is no error";
  EXPECT_TRUE(fs::is_directory(base + "/a/b/c"));
  // On Linux each backslash prefix is a directory of its own.
  EXPECT_EQ(createDirectory(base + "/p\\q"), 0);
  EXPECT_TRUE(fs::is_directory(base + "/p\\") && fs::is_directory(base + "/p\\q"));
  std::ofstream(base + "/file") << "x";
  EXPECT_EQ(createDirectory(base + "/file/below"), 1005011);

  const std::string first = base + "/" + std::string(100, 'd');
  const std::string tooLong = first + "/" + std::string(257 - first.size() - 1, 'e');
  ASSERT_EQ(tooLong.size(), 257u);
  EXPECT_EQ(createDirectory(tooLong), 1005011);
  EXPECT_FALSE(fs::exists(first)) << "nothing is made for a path that is too long";
  EXPECT_EQ(createDirectory(tooLong.substr(0, 256)), 0);
  EXPECT_TRUE(fs::is_directory(tooLong.substr(0, 256)));

  const tavtest::WorkingDirectory inside(base);
  EXPECT_EQ(createDirectory("r/s/"), 0);
  EXPECT_TRUE(fs::is_directory(base + "/r/s"));
}

// trim erases the blanks and then throws, so any content outside a block comment ends the
// read, the comment styles included: only empty lines and block comments open.
TEST(TavPropertiesTest, OpensOnlyEmptyLinesAndBlockCommentsAndThrowsForAnyOtherContent) {
  const tavtest::TemporaryDirectory directory;
  const std::string path = directory.Path() + "/TavClientResource.properties";
  EXPECT_EQ(TavProperties().open(nullptr), 1005011);
  EXPECT_EQ(TavProperties().open(path.c_str()), 1005011) << "no such file";

  std::ofstream(path) << "\n/* begin\nLOG_PATH=/x\nend */ dropped=1\n/* b */ c\n\n";
  TavProperties properties;
  EXPECT_EQ(properties.open(path.c_str()), 0);
  EXPECT_EQ(properties.load(), 0);
  std::string value = "untouched";
  EXPECT_EQ(properties.read("LOG_PATH", &value), 1005011);
  EXPECT_EQ(value, "untouched");

  for (const char* line : {"LOG_PATH=/var/log/x", "# note", "// note", "<!-- note -->", "a /* b */ c", "  "}) {
    std::ofstream(path) << "/* fine */\n" << line << "\n";
    try {
      TavProperties().open(path.c_str());
      ADD_FAILURE() << "no exception for: " << line;
    } catch (const std::out_of_range& error) {
      EXPECT_NE(std::string(error.what()).find("basic_string::erase"), std::string::npos) << error.what();
    }
  }
  std::string text = " a b ";
  EXPECT_THROW(TavProperties().trim(text), std::out_of_range);
  EXPECT_EQ(text, "ab");
}

// HOME on a fresh directory, and a working directory of its own for the properties file.
class TavResourceTest : public ::testing::Test {
protected:
  tavtest::TemporaryDirectory home, workingDirectory;
  const tavtest::WorkingDirectory inside{workingDirectory.Path()};
  const tavtest::ScopedHome homeVariable{home.Path()};
  const std::string properties = workingDirectory.Path() + "/TavClientResource.properties";
  // The base without a usable HOME; getcwd, which the library asks, resolves links.
  const std::string localBase = fs::canonical(workingDirectory.Path()).string() + "/TavClient";
  TavResource& resource = TavResource::GetInstance();
};

TEST_F(TavResourceTest, WithoutAPropertiesFileOrWithCommentsOnlyMakesTheDefaultsUnderHome) {
  for (const bool withComments : {false, true}) {
    if (withComments) std::ofstream(properties) << "/* TAVCLIENT_PATH=/elsewhere */\n\n";
    EXPECT_EQ(resource.Load(), 0);
    EXPECT_TRUE(resource.IsLoaded());
    EXPECT_EQ(resource.GetHome(), home.Path());
    EXPECT_EQ(resource.GetBasePath(), home.Path() + "/TavClient");
    EXPECT_EQ(resource.GetLogPath(), home.Path() + "/TavClient/log");
    EXPECT_EQ(resource.GetRepositoryPath(), home.Path() + "/TavClient/repository");
    EXPECT_EQ(resource.GetHomeNotice(), "");
    EXPECT_TRUE(fs::is_directory(resource.GetLogPath()) && fs::is_directory(resource.GetRepositoryPath()));
  }
}

// Any key=value line makes the reader throw: Load has read HOME then and made nothing.
TEST_F(TavResourceTest, APropertiesFileWithAKeyThrowsBeforeMakingAnything) {
  std::ofstream(properties) << "LOG_PATH=" << home.Path() << "/logs\n";
  EXPECT_THROW(resource.Load(), std::out_of_range);
  EXPECT_EQ(resource.GetHome(), home.Path());
  EXPECT_TRUE(fs::is_empty(home.Path()));
}

// A path over 256 characters cannot be made, so "deep" fails even for root.
TEST_F(TavResourceTest, WithoutAUsableHomeMakesTheDirectoriesInTheWorkingDirectory) {
  const std::string file = home.Path() + "/file";
  std::ofstream(file) << "x";
  const std::string deep = home.Path() + "/" + std::string(250 - home.Path().size(), 'd');
  fs::create_directory(deep);
  const std::vector<std::pair<std::optional<std::string>, std::string>> cases{
      {std::nullopt, "unset"},
      {"", "empty"},
      {file, file + " is not a directory"},
      {file + "/below", file + "/below is not a directory"},
      {deep, "cannot create " + deep + "/TavClient"},
  };
  for (const auto& [value, reason] : cases) {
    const tavtest::ScopedHome homeOfTheCase(value);
    EXPECT_EQ(resource.Load(), 0);
    EXPECT_EQ(resource.GetHomeNotice(), "HOME is not usable (" + reason + ")");
    EXPECT_EQ(resource.GetBasePath(), localBase);
    EXPECT_EQ(resource.GetLogPath(), localBase + "/log");
    EXPECT_EQ(resource.GetRepositoryPath(), localBase + "/repository");
  }
  EXPECT_TRUE(fs::is_directory(localBase + "/log") && fs::is_directory(localBase + "/repository"));
  EXPECT_TRUE(fs::is_empty(deep));
}

TEST_F(TavResourceTest, ADirectoryThatCannotBeMadeGivesTheFailureCodeAndNoPathOfAnEarlierLoad) {
  ASSERT_EQ(resource.Load(), 0);
  std::ofstream(localBase) << "x";
  const tavtest::ScopedHome homeUnset(std::nullopt);
  EXPECT_EQ(resource.Load(), 1005011);
  EXPECT_EQ(resource.GetBasePath(), localBase);
  EXPECT_EQ(resource.GetLogPath(), localBase + "/log") << "set before it failed";
  EXPECT_EQ(resource.GetRepositoryPath(), "");
}
