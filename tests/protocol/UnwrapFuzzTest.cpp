#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/RobotEvent.h"
#include "protocol/Parser.h"

namespace {

class TextMutator {
public:
  explicit TextMutator(unsigned seed) : random(seed) {}

  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
  }

  std::string mutate(std::string text) {
    for (std::size_t edits = 1 + below(4); edits > 0; --edits) {
      const std::size_t at = below(text.size() + 1);
      const std::size_t length = std::min(text.size() - at, below(16));
      switch (below(5)) {
        case 0: text.insert(at, kTokens[below(kTokens.size())]); break;
        case 1: text.erase(at, length); break;
        case 2: text.insert(at, text.substr(at, length)); break;
        case 3: text.resize(at); break;
        default: text.insert(at, 1, static_cast<char>(below(256))); break;
      }
    }
    return text;
  }

  std::string noise() {
    std::string text;
    for (std::size_t pieces = below(24); pieces > 0; --pieces) {
      text += kTokens[below(kTokens.size())];
    }
    return text;
  }

private:
  const std::vector<std::string> kTokens = {
      "<", ">", "/", "/>", " ", "<root>", "</root>", "<root />", "<head>", "</head>", "<a />",
      "<a>", "</a>", "Heart", "Error", "ConnResult", "result", "x", "\xff", std::string(1, '\0')};
  std::mt19937 random;
};

std::vector<std::string> seedMessages() {
  Parser parser;
  std::string command;
  Parser::Message params{{"timestamp", "3"}, {"ClientID", "7"}, {"function_name", "get_angles"},
                         {"motor_ids", "1,2"}, {"block", ""}};
  parser.wrap_msg(command, params);
  return {
      command,
      "<root><Heart /></root>",
      "<root><Error><errorcode>7</errorcode></Error></root>",
      "<root><head><identifier>ConnResult</identifier></head><ConnResult><result>0</result>"
      "</ConnResult><tail><checksum>48</checksum></tail></root>",
      "<root><head><timestamp>3</timestamp><state>0</state></head><result><result1>1,2</result1>"
      "</result><taskmatching><timestamp>3</timestamp><name>get_angles</name></taskmatching>"
      "<tail><checksum>143</checksum></tail></root>",
  };
}

}  // namespace

// Whatever arrives, unwrap answers with a status or lets the parser's out_of_range through.
TEST(ParserUnwrapFuzz, ArbitraryTextGivesAStatusOrOutOfRange) {
  const std::vector<std::string> seeds = seedMessages();
  TextMutator mutator(20240611u);
  int decoded = 0;
  int rejected = 0;
  int thrown = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string text = round % 8 == 0 ? mutator.noise() : mutator.mutate(seeds[mutator.below(seeds.size())]);
    Parser parser;
    Parser::Message result{{"identifier", "before"}};
    try {
      const int status = parser.unwrap(result, text);
      if (status == 0) {
        ++decoded;
      } else {
        EXPECT_EQ(status, RobotEvents::kDecodeFailed) << text;
        ++rejected;
      }
    } catch (const std::out_of_range&) {
      ++thrown;
    } catch (...) {
      ADD_FAILURE() << "unexpected exception for " << text;
    }
  }
  EXPECT_GT(decoded, 0);
  EXPECT_GT(rejected, 0);
  EXPECT_GT(thrown, 0);
}
