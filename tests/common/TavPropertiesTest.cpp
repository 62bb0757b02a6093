#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "TestHelpers.h"
#include "common/TavProperties.h"
#include "support/TemporaryDirectory.h"

namespace {

class TavPropertiesTest : public ::testing::Test {
protected:
  // Whether `open` accepts a file of `content` (nullopt: no such file) and no key can be read.
  void ExpectOpensWithoutKeys(const std::optional<std::string>& content, int openStatus) {
    if (content) tavtest::WriteFile(path, *content);
    TavProperties properties;
    EXPECT_EQ(properties.open(path.c_str()), openStatus);
    EXPECT_EQ(properties.load(), 0);
    for (const char* key : {"TAVCLIENT_PATH", "LOG_PATH", "REPOSITORY_PATH"}) {
      std::string value = "untouched";
      EXPECT_EQ(properties.read(key, &value), 1005011) << key;
      EXPECT_EQ(value, "untouched");
    }
  }

  tavtest::TemporaryDirectory directory;
  const std::string path = directory.Path() + "/TavClientResource.properties";
};

TEST_F(TavPropertiesTest, AcceptsOnlyEmptyLinesAndBlockComments) {
  EXPECT_EQ(TavProperties().open(nullptr), 1005011);
  ExpectOpensWithoutKeys(std::nullopt, 1005011);
  ExpectOpensWithoutKeys("\n/* begin\nLOG_PATH=/x\nend */ dropped=1\n/* b */ c\n\n", 0);
}

// trim erases the blanks and then throws, so any content outside a block comment ends the
// read, the comment styles included.
TEST_F(TavPropertiesTest, AnyContentLineThrowsFromOpen) {
  for (const char* line : {"LOG_PATH=/var/log/x", "# note", "// note", "<!-- note -->", "a /* b */ c", "  "}) {
    tavtest::WriteFile(path, std::string("/* fine */\n") + line + "\n");
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

}  // namespace
