#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "common/TavProperties.h"
#include "support/TemporaryDirectory.h"

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
