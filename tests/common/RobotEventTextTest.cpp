#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "common/RobotEvent.h"
#include "common/RobotEventText.h"

namespace {

using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAreArray;

// The number in the first group of `pattern`, for each line of a file in the source tree that
// matches it.
std::vector<Robot_Event> CodesIn(const std::string& path, const std::regex& pattern) {
  std::ifstream file(std::string(TAVCLIENT_SOURCE_DIR) + "/" + path);
  EXPECT_TRUE(file) << path;
  std::vector<Robot_Event> codes;
  for (std::string line; std::getline(file, line);) {
    std::smatch match;
    if (std::regex_search(line, match, pattern)) {
      codes.push_back(std::stoi(match[1]));
    }
  }
  return codes;
}

// A code sharing its text with another would leave the reader guessing which one it was.
void ExpectOwnTexts(const std::vector<Robot_Event>& codes) {
  std::set<std::string> texts;
  for (const Robot_Event code : codes) {
    const std::string text = RobotEventText(code);
    EXPECT_THAT(text, Not(StartsWith("unknown event"))) << code;
    EXPECT_TRUE(texts.insert(text).second) << code << " shares its text: " << text;
  }
}

}  // namespace

TEST(RobotEventTextTest, EveryCodeTheLibraryDeclaresOrTheSimulatorDocumentsHasItsOwnText) {
  const std::vector<Robot_Event> listed(std::begin(RobotEvents::kLibraryCodes),
                                        std::end(RobotEvents::kLibraryCodes));
  const std::vector<Robot_Event> declared =
      CodesIn("src/common/RobotEvent.h", std::regex(R"(constexpr Robot_Event k\w+ = (\d+);)"));
  const std::vector<Robot_Event> documented =
      CodesIn("simulator/README.md", std::regex(R"(^\| (\d{7}) \|)"));
  ASSERT_FALSE(declared.empty() || documented.empty());
  EXPECT_THAT(listed, UnorderedElementsAreArray(declared));
  ExpectOwnTexts(listed);
  ExpectOwnTexts(documented);
}

// The README's table of codes says more than the texts; its first clause, without remarks in
// brackets, is the text itself.
TEST(RobotEventTextTest, EachCodeOfTheReadmeTableReadsAsItsMeaningThere) {
  std::ifstream readme(std::string(TAVCLIENT_SOURCE_DIR) + "/README.md");
  ASSERT_TRUE(readme);
  const std::regex row(R"(^\| (\d+) \| ([^|]+?) \|)");
  const auto mainClause = [](const std::string& text) {
    const std::string plain = std::regex_replace(text, std::regex(R"( ?\([^)]*\)|`)"), "");
    return plain.substr(0, plain.find_first_of(":;"));
  };
  int rows = 0;
  for (std::string line; std::getline(readme, line);) {
    std::smatch match;
    if (std::regex_search(line, match, row)) {
      ++rows;
      const Robot_Event code = std::stoi(match[1]);
      EXPECT_EQ(mainClause(RobotEventText(code)), mainClause(match[2].str())) << code;
    }
  }
  EXPECT_GE(rows, 20);
}

TEST(RobotEventTextTest, AnyOtherCodeIsUnknownWithItsNumberInABufferOfItsThread) {
  const char* mine = RobotEventText(std::numeric_limits<Robot_Event>::min());
  std::string theirs;
  std::thread([&theirs] { theirs = RobotEventText(43); }).join();
  EXPECT_STREQ(mine, "unknown event -2147483648");
  EXPECT_EQ(theirs, "unknown event 43");
}
