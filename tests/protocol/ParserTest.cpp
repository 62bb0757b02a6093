#include <gtest/gtest.h>

#include <cstddef>
#include <regex>
#include <string>
#include <vector>

#include "common/RobotEvent.h"
#include "protocol/CheckSum.h"
#include "protocol/Parser.h"

namespace {

using Message = Parser::Message;
using Decoder = int (Parser::*)(Message&, std::string&);
constexpr int kFailed = RobotEvents::kDecodeFailed;
const std::string kName = "move_to_angles5201";

const std::string kHeart = "<root><Heart /></root>";
const std::string kError = "<root><Error><errorcode>7</errorcode></Error></root>";

std::string connResult(const std::string& checksum, const std::string& identifier = "ConnResult") {
  return "<root><head><identifier>" + identifier +
         "</identifier></head><ConnResult><result>0"
         "</result></ConnResult><tail><checksum>" +
         checksum + "</checksum></tail></root>";
}

std::string reply(const std::string& results, const std::string& checksum,
                  const std::string& state = "<state>0</state>") {
  return "<root><head><timestamp>5201</timestamp>" + state + "</head>" + results +
         "<taskmatching><timestamp>5201</timestamp><name>move_to_angles</name></taskmatching>"
         "<tail><checksum>" +
         checksum + "</checksum></tail></root>";
}

const std::string kConnResult = connResult("48");
// "1.5,2.5" and "x" sum to 341 + 120.
const std::string kReply =
    reply("<result><result1>1.5,2.5</result1><result2>x</result2></result>", "461");

int decode(Decoder decoder, std::string text, Message* result = nullptr) {
  Message scratch;
  return (Parser().*decoder)(result != nullptr ? *result : scratch, text);
}

// The element `name` (its occurrence-th, from 0, in long or short form) taken out or renamed.
std::string edited(const std::string& text, const std::string& name, int occurrence, bool remove) {
  const std::regex element("<" + name + "( />|>.*?</" + name + ">)");
  std::sregex_iterator match(text.begin(), text.end(), element);
  for (int skipped = 0; skipped < occurrence; ++skipped) {
    ++match;
  }
  const std::string renamed =
      std::regex_replace(match->str(), std::regex("(</?" + name + ")( />|>)"), "$1x$2");
  const auto at = static_cast<std::size_t>(match->position());
  return text.substr(0, at) + (remove ? "" : renamed) +
         text.substr(at + static_cast<std::size_t>(match->length()));
}

}  // namespace

TEST(CheckSum, AddsSignedBytesUpToNulAndStartsAfreshAfterEachSum) {
  CheckSum sum;
  EXPECT_EQ(sum.CalcSum(), 0);
  sum.AddElement("\xff");
  EXPECT_EQ(sum.CalcSum(), -1);
  EXPECT_EQ(sum.CalcSum(), 0);
  sum.AddElement("\x80");
  sum.AddElement(std::string{'1', '\0', '9'});
  EXPECT_EQ(sum.CalcSum(), -128 + '1');
}

// Parameters go before the name in byte-wise key order, empty ones in short form; the sum
// counts the name and the parameter values, high bytes negative. The robot tests pin the exact
// text of the ClientInfo and of every command.
TEST(ParserWrap, WritesTheExactTextAndLeavesOnlyTheParametersInTheMap) {
  using Wrapper = int (Parser::*)(std::string&, Message&);
  const Message untouched{{"identifier", "ClientInfo"}};
  // A command of client 7 at 5201 with these parameters.
  const auto command = [](const std::string& name, Message parameters) {
    parameters.insert({{"timestamp", "5201"}, {"ClientID", "7"}, {"function_name", name}});
    return parameters;
  };
  const std::string head =
      "<root><head><timestamp>5201</timestamp><ClientID>7</ClientID></head><function>";
  const struct {
    Wrapper wrap;
    Message params;
    std::string text;
    Message left;
  } cases[] = {
      {&Parser::wrap_heart, untouched, "<root><heart /></root>", untouched},
      {&Parser::wrap_msg,
       command("f", {{"b", ""}, {"a", "\xff"}, {"Z", "z"}}),
       head + "<parameter><Z>z</Z><a>\xff</a><b /></parameter><name>f</name></function>"
              "<tail><checksum>223</checksum></tail></root>",
       {{"b", ""}, {"a", "\xff"}, {"Z", "z"}}},
      {&Parser::wrap_msg,
       {{"function_name", "\xff"}},
       "<root><head><timestamp /><ClientID /></head><function><parameter /><name>\xff</name>"
       "</function><tail><checksum>-1</checksum></tail></root>",
       {}},
  };
  for (auto c : cases) {
    SCOPED_TRACE(c.text);
    std::string out = "previous";
    EXPECT_EQ((Parser().*c.wrap)(out, c.params), 0);
    EXPECT_EQ(out, c.text);
    EXPECT_EQ(c.params, c.left);
  }
}

TEST(ParserUnwrap, FillsTheMapAndKeepsWhatWasWrittenBeforeAFault) {
  const struct {
    std::string text;
    int status;
    Message expected;
  } cases[] = {
      {kHeart, 0, {{"identifier", "heart"}}},
      {"<root><Heart>x</Heart></root>", 0, {{"identifier", "heart"}}},
      {kError, 0, {{"identifier", "Error"}, {"errorcode", "7"}}},
      {kConnResult, 0, {{"identifier", "ConnResult"}, {"result", "0"}}},
      {kReply,
       0,
       {{"state", "0"}, {"result1", "1.5,2.5"}, {"result2", "x"}, {"identifier", kName}}},
      {reply("<result />", "0"), 0, {{"state", "0"}, {"identifier", kName}}},
      {reply("<result><state>9</state><identifier>i</identifier></result>", "162"),
       0,
       {{"state", "9"}, {"identifier", kName}}},
      {connResult("48", "connresult"), kFailed, {{"identifier", "connresult"}}},
      {reply("<result><result1>1</result1></result>", "0"),
       kFailed,
       {{"state", "0"}, {"result1", "1"}, {"identifier", kName}}},
      {reply("<result />", "0", "<status>0</status>"), kFailed, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    Message result{{"kept", "yes"}}, expected = c.expected;
    expected["kept"] = "yes";
    EXPECT_EQ(decode(&Parser::unwrap, c.text, &result), c.status);
    EXPECT_EQ(result, expected);
  }
}

TEST(ParserUnwrap, EachDecoderRejectsEveryMisnamedOrMissingElement) {
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
      {&Parser::unwrap_ConnResult,
       kConnResult,
       {{"head", 0, true},
        {"identifier", 0, false},
        {"ConnResult", 0, true},
        {"result", 0, true},
        {"tail", 0, true},
        {"checksum", 0, true}}},
      {&Parser::unwrap_Msg,
       kReply,
       {{"head", 0, true},
        {"timestamp", 0, true},
        {"state", 0, true},
        {"result", 0, true},
        {"taskmatching", 0, true},
        {"timestamp", 1, true},
        {"name", 0, true},
        {"tail", 0, true},
        {"checksum", 0, true}}},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(decode(c.decoder, c.text), 0) << c.text;
    for (const Tag& tag : c.tags) {
      const std::string missing = edited(c.text, tag.name, tag.occurrence, true);
      const std::string misnamed = edited(c.text, tag.name, tag.occurrence, false);
      EXPECT_EQ(decode(c.decoder, missing), kFailed) << missing;
      EXPECT_EQ(decode(c.decoder, misnamed), tag.nameChecked ? kFailed : 0) << misnamed;
    }
  }
}

// The declared sum is compared in its low 32 bits, an empty one reads as 0; unwrap picks its
// decoder by a plain substring search for "ConnResult", "Heart" and "Error", in that order.
TEST(ParserUnwrap, ComparesTheChecksumsLowBitsAndDispatchesOnSubstrings) {
  const std::string heartWithConn = "<root><Heart>ConnResult</Heart></root>";
  const std::string errorWithHeart = "<root><Error><errorcode>Heart</errorcode></Error></root>";
  const std::string replyWithHeart = reply("<result><r>Heart</r></result>", "500");
  const std::string replyWithError = reply("<result><r>Error</r></result>", "522");
  const struct {
    Decoder decoder;
    std::string text;
    int status;
  } cases[] = {
      {&Parser::unwrap, connResult("4294967344"), 0},
      {&Parser::unwrap, connResult("49"), kFailed},
      {&Parser::unwrap, connResult(""), kFailed},
      {&Parser::unwrap, connResult("-48"), kFailed},
      {&Parser::unwrap, reply("<result />", ""), 0},
      {&Parser::unwrap, reply("<result />", "1"), kFailed},
      {&Parser::unwrap, reply("<result><r>\xff</r></result>", "-1"), 0},
      {&Parser::unwrap, reply("<result><r>\xff</r></result>", "4294967295"), 0},
      // Both children named "r" read the first one's text: the sum is '1' + '1'.
      {&Parser::unwrap, reply("<result><r>1</r><r>2</r></result>", "99"), kFailed},
      {&Parser::unwrap_Heart, heartWithConn, 0},
      {&Parser::unwrap, heartWithConn, kFailed},
      {&Parser::unwrap_Error, errorWithHeart, 0},
      {&Parser::unwrap, errorWithHeart, kFailed},
      {&Parser::unwrap_Msg, replyWithHeart, 0},
      {&Parser::unwrap, replyWithHeart, kFailed},
      {&Parser::unwrap_Msg, replyWithError, 0},
      {&Parser::unwrap, replyWithError, kFailed},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(decode(c.decoder, c.text), c.status) << c.text;
  }
}
