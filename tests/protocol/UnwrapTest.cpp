#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/RobotEvent.h"
#include "protocol/MessageEdits.h"
#include "protocol/Parser.h"

namespace {

using Message = Parser::Message;
using Decoder = int (Parser::*)(Message&, std::string&);
constexpr int kFailed = RobotEvents::kDecodeFailed;

const std::string kHeart = "<root><Heart /></root>";
const std::string kError = "<root><Error><errorcode>7</errorcode></Error></root>";

std::string connResult(const std::string& identifier, const std::string& checksum) {
  return "<root><head><identifier>" + identifier + "</identifier></head><ConnResult><result>0"
         "</result></ConnResult><tail><checksum>" + checksum + "</checksum></tail></root>";
}

std::string reply(const std::string& head, const std::string& results, const std::string& checksum) {
  return "<root><head><timestamp>5201</timestamp>" + head + "</head>" + results +
         "<taskmatching><timestamp>5201</timestamp><name>move_to_angles</name></taskmatching>"
         "<tail><checksum>" + checksum + "</checksum></tail></root>";
}

std::string reply(const std::string& results, const std::string& checksum) {
  return reply("<state>0</state>", results, checksum);
}

const std::string kConnResult = connResult("ConnResult", "48");
// "1.5,2.5" and "x" sum to 341 + 120.
const std::string kReply = reply("<result><result1>1.5,2.5</result1><result2>x</result2></result>", "461");

int decode(Decoder decoder, std::string text, Message& result) {
  Parser parser;
  return (parser.*decoder)(result, text);
}

int decode(Decoder decoder, const std::string& text) {
  Message result;
  return decode(decoder, text, result);
}

}  // namespace

TEST(ParserUnwrap, DecodesEachWellFormedKind) {
  const struct {
    std::string text;
    Message expected;
  } cases[] = {
      {kHeart, {{"identifier", "heart"}}},
      {"<root><Heart>x</Heart></root>", {{"identifier", "heart"}}},
      {kError, {{"identifier", "Error"}, {"errorcode", "7"}}},
      {kConnResult, {{"identifier", "ConnResult"}, {"result", "0"}}},
      {kReply, {{"state", "0"}, {"result1", "1.5,2.5"}, {"result2", "x"}, {"identifier", "move_to_angles5201"}}},
      {reply("<result />", "0"), {{"state", "0"}, {"identifier", "move_to_angles5201"}}},
  };
  for (const auto& c : cases) {
    Message result{{"kept", "yes"}};
    EXPECT_EQ(decode(&Parser::unwrap, c.text, result), 0) << c.text;
    Message expected = c.expected;
    expected["kept"] = "yes";
    EXPECT_EQ(result, expected) << c.text;
  }
}

TEST(ParserUnwrap, RejectsEveryMisnamedOrMissingElement) {
  struct Tag {
    std::string name;
    int occurrence;
    bool nameChecked;
  };
  const struct {
    Decoder decoder;
    std::string text;
    std::vector<Tag> tags;
  } cases[] = {
      {&Parser::unwrap_Heart, kHeart, {{"Heart", 0, true}}},
      {&Parser::unwrap_Error, kError, {{"Error", 0, true}, {"errorcode", 0, true}}},
      {&Parser::unwrap_ConnResult, kConnResult,
       {{"head", 0, true}, {"identifier", 0, false}, {"ConnResult", 0, true}, {"result", 0, true},
        {"tail", 0, true}, {"checksum", 0, true}}},
      {&Parser::unwrap_Msg, kReply,
       {{"head", 0, true}, {"timestamp", 0, true}, {"state", 0, true}, {"result", 0, true},
        {"taskmatching", 0, true}, {"timestamp", 1, true}, {"name", 0, true}, {"tail", 0, true},
        {"checksum", 0, true}}},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(decode(c.decoder, c.text), 0) << c.text;
    for (const Tag& tag : c.tags) {
      const std::string missing = message_edits::without(c.text, tag.name, tag.occurrence);
      EXPECT_EQ(decode(c.decoder, missing), kFailed) << missing;
      const std::string misnamed = message_edits::renamed(c.text, tag.name, tag.occurrence);
      EXPECT_EQ(decode(c.decoder, misnamed), tag.nameChecked ? kFailed : 0) << misnamed;
    }
  }
}

TEST(ParserUnwrap, ReadsTheChecksumLikeStrtolAndComparesLow32Bits) {
  const struct {
    std::string text;
    int status;
  } cases[] = {
      {connResult("ConnResult", "48abc"), 0},   {connResult("ConnResult", " 48"), 0},
      {connResult("ConnResult", "+48"), 0},     {connResult("ConnResult", "4294967344"), 0},
      {connResult("ConnResult", "49"), kFailed}, {connResult("ConnResult", ""), kFailed},
      {connResult("ConnResult", "-48"), kFailed}, {reply("<result />", ""), 0},
      {reply("<result />", "1"), kFailed},      {reply("<result><r>\xff</r></result>", "-1"), 0},
      {reply("<result><r>\xff</r></result>", "4294967295"), 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(decode(&Parser::unwrap, c.text), c.status) << c.text;
  }
}

TEST(ParserUnwrap, KeepsWhatWasWrittenBeforeAFault) {
  Message result;
  EXPECT_EQ(decode(&Parser::unwrap, connResult("connresult", "48"), result), kFailed);
  EXPECT_EQ(result, (Message{{"identifier", "connresult"}}));

  result.clear();
  EXPECT_EQ(decode(&Parser::unwrap, reply("<result><result1>1</result1></result>", "0"), result), kFailed);
  EXPECT_EQ(result, (Message{{"state", "0"}, {"result1", "1"}, {"identifier", "move_to_angles5201"}}));

  result.clear();
  EXPECT_EQ(decode(&Parser::unwrap, reply("<status>0</status>", "<result />", "0"), result), kFailed);
  EXPECT_TRUE(result.empty());
}

TEST(ParserUnwrap, ResultChildrenOverwriteByName) {
  Message result;
  // Both children named "r" read the first one's text, so the sum is '1' + '1'.
  EXPECT_EQ(decode(&Parser::unwrap, reply("<result><r>1</r><r>2</r></result>", "98"), result), 0);
  EXPECT_EQ(result["r"], "1");
  EXPECT_EQ(decode(&Parser::unwrap, reply("<result><r>1</r><r>2</r></result>", "99")), kFailed);

  result.clear();
  EXPECT_EQ(decode(&Parser::unwrap, reply("<result><state>9</state><identifier>i</identifier></result>", "162"),
                   result), 0);
  EXPECT_EQ(result["state"], "9");
  EXPECT_EQ(result["identifier"], "move_to_angles5201");
}

TEST(ParserUnwrap, DispatchesOnSubstringsInFixedOrder) {
  const struct {
    std::string text;
    Decoder intended;
  } cases[] = {
      {"<root><Heart>ConnResult</Heart></root>", &Parser::unwrap_Heart},
      {"<root><Error><errorcode>Heart</errorcode></Error></root>", &Parser::unwrap_Error},
      {reply("<result><r>Heart</r></result>", "500"), &Parser::unwrap_Msg},
      {reply("<result><r>Error</r></result>", "522"), &Parser::unwrap_Msg},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(decode(c.intended, c.text), 0) << c.text;
    EXPECT_EQ(decode(&Parser::unwrap, c.text), kFailed) << c.text;
  }
}

// Whatever arrives, unwrap answers with a status or lets the parser's out_of_range through.
TEST(ParserUnwrap, MutatedTextGivesAStatusOrOutOfRange) {
  const std::string seeds[] = {kHeart, kError, kConnResult, kReply};
  const std::string tokens[] = {"<", ">", "/", "/>", " ", "<root>", "</root>", "<root />", "<a>", "</a>",
                                "<a />", "Heart", "Error", "ConnResult", "\xff", std::string(1, '\0')};
  std::mt19937 random(20240611u);
  const auto below = [&random](std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
  };
  int outcomes[3] = {};  // decoded, rejected, thrown
  for (int round = 0; round < 20000; ++round) {
    std::string text = seeds[below(std::size(seeds))];
    for (std::size_t edits = 1 + below(6); edits > 0; --edits) {
      const std::size_t at = below(text.size() + 1);
      const std::size_t length = std::min(text.size() - at, below(16));
      switch (below(4)) {
        case 0: text.insert(at, tokens[below(std::size(tokens))]); break;
        case 1: text.erase(at, length); break;
        case 2: text.insert(at, text.substr(at, length)); break;
        default: text.insert(at, 1, static_cast<char>(below(256))); break;
      }
    }
    Message result;
    try {
      const int status = decode(&Parser::unwrap, text, result);
      EXPECT_TRUE(status == 0 || status == kFailed) << status << " for " << text;
      ++outcomes[status == 0 ? 0 : 1];
    } catch (const std::out_of_range&) {
      ++outcomes[2];
    } catch (...) {
      ADD_FAILURE() << "unexpected exception for " << text;
    }
  }
  for (const int count : outcomes) {
    EXPECT_GT(count, 0);
  }
}
