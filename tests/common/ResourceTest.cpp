#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/TavResource.h"
#include "common/TavUtils.h"
#include "support/TemporaryHome.h"

namespace fs = std::filesystem;

TEST(TavUtilsTest, TimeStampCountsToTenThousandTwoHundredFortyThenWraps) {
  _TavTimeStamp = 0;
  int mismatches = 0;
  for (int expected = 1; expected <= 10240; ++expected) {
    mismatches += GetTimeStamp() != expected;
  }
  EXPECT_EQ(mismatches, 0);
  EXPECT_EQ(GetTimeStamp(), 1);
}

// Parents first, on either separator (on Linux each backslash prefix is a directory of its
// own), relative or absolute, up to 256 characters; the resource tests below meet its failures.
TEST(TavUtilsTest,
     CreateDirectoryMakesParentsFirstOnBothSeparatorsUpToTwoHundredFiftySixCharacters) {
  const tavtest::TemporaryDirectory temporary;
  const std::string base = temporary.Path() + "/";
  const tavtest::WorkingDirectory inside(base);
  const std::string first = base + std::string(100, 'd');
  const std::string longest = first + "/" + std::string(255 - first.size(), 'e');
  EXPECT_EQ(createDirectory(longest + "e"), 1005011);
  EXPECT_FALSE(fs::exists(first)) << "nothing is made for a path that is too long";
  for (const std::string& path : {base + "a/b/c", base + "p\\q", std::string("r/s/"), longest}) {
    EXPECT_EQ(createDirectory(path), 0) << path;
  }
  for (const std::string& made :
       {base + "a/b/c", base + "p\\", base + "p\\q", base + "r/s", longest}) {
    EXPECT_TRUE(fs::is_directory(made)) << made;
  }
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

  // The log and repository paths are set and made under `base`.
  void ExpectPathsUnder(const std::string& base) {
    EXPECT_EQ(resource.GetLogPath(), base + "/log");
    EXPECT_EQ(resource.GetRepositoryPath(), base + "/repository");
    EXPECT_TRUE(fs::is_directory(base + "/log") && fs::is_directory(base + "/repository"));
  }
};

// A file of comments only reads as none.
TEST_F(TavResourceTest, WithoutAKeyInAPropertiesFileMakesTheDefaultsUnderHome) {
  std::ofstream(properties) << "/* TAVCLIENT_PATH=/elsewhere */\n\n";
  EXPECT_EQ(resource.Load(), 0);
  EXPECT_EQ(resource.GetHomeNotice(), "");
  ExpectPathsUnder(home.Path() + "/TavClient");
}

// Any content but empty lines and block comments makes the properties reader throw.
TEST_F(TavResourceTest, APropertiesFileWithAKeyThrowsBeforeMakingAnything) {
  std::ofstream(properties) << "LOG_PATH=" << home.Path() << "/logs\n";
  EXPECT_THROW(resource.Load(), std::out_of_range);
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
    ExpectPathsUnder(localBase);
  }
  EXPECT_TRUE(fs::is_empty(deep));
}
