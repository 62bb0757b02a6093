#include <gtest/gtest.h>

#include <string>

#include "protocol/CheckSum.h"
#include "protocol/Parser.h"

TEST(CheckSum, AddsSignedBytesUpToNulAndStartsAfreshAfterEachSum) {
  CheckSum sum;
  EXPECT_EQ(sum.CalcSum(), 0);
  sum.AddElement("\xff");
  EXPECT_EQ(sum.CalcSum(), -1);
  EXPECT_EQ(sum.CalcSum(), 0);
  sum.AddElement("\x80");
  sum.AddElement(std::string("1\0" "999", 5));
  EXPECT_EQ(sum.CalcSum(), -128 + '1');
}

// Parameters go before the name in byte-wise key order, empty ones in short form; the sum
// counts the name and the parameter values, high bytes negative.
TEST(ParserWrap, WritesTheExactTextAndLeavesOnlyTheParametersInTheMap) {
  using Message = Parser::Message;
  using Wrapper = int (Parser::*)(std::string&, Message&);
  const Message info{{"identifier", "ClientInfo"}, {"version", "0.1.0"}, {"system", "windows"}, {"language", "CPP"}};
  const std::string head = "<root><head><timestamp>5201</timestamp><ClientID>7</ClientID></head><function>";
  const struct {
    Wrapper wrap;
    Message params;
    std::string text;
    Message left;
  } cases[] = {
      {&Parser::wrap_heart, info, "<root><heart /></root>", info},
      {&Parser::wrap_clientinfo, info,
       "<root><head><identifier>ClientInfo</identifier></head><ClientInfo><version>0.1.0</version><system>windows"
       "</system><language>CPP</language></ClientInfo><tail><checksum>1243</checksum></tail></root>", info},
      {&Parser::wrap_msg,
       {{"timestamp", "5201"}, {"ClientID", "7"}, {"function_name", "move_to_angles"}, {"velocity", "0.500000"},
        {"block", "1"}},
       head + "<parameter><block>1</block><velocity>0.500000</velocity></parameter><name>move_to_angles</name>"
              "</function><tail><checksum>1926</checksum></tail></root>",
       {{"block", "1"}, {"velocity", "0.500000"}}},
      {&Parser::wrap_msg, {{"timestamp", "5201"}, {"ClientID", "7"}, {"function_name", "recover"}},
       head + "<parameter /><name>recover</name></function><tail><checksum>758</checksum></tail></root>", {}},
      {&Parser::wrap_msg,
       {{"timestamp", "5201"}, {"ClientID", "7"}, {"function_name", "f"}, {"b", ""}, {"a", "\xff"}, {"Z", "z"}},
       head + "<parameter><Z>z</Z><a>\xff</a><b /></parameter><name>f</name></function><tail><checksum>223"
              "</checksum></tail></root>",
       {{"b", ""}, {"a", "\xff"}, {"Z", "z"}}},
      {&Parser::wrap_msg, {{"function_name", "\xff"}},
       "<root><head><timestamp /><ClientID /></head><function><parameter /><name>\xff</name></function><tail>"
       "<checksum>-1</checksum></tail></root>", {}},
  };
  for (auto c : cases) {
    SCOPED_TRACE(c.text);
    std::string out = "previous";
    EXPECT_EQ((Parser().*c.wrap)(out, c.params), 0);
    EXPECT_EQ(out, c.text);
    EXPECT_EQ(c.params, c.left);
  }
}
