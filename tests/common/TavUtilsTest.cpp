#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "common/TavUtils.h"
#include "support/TemporaryDirectory.h"

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
