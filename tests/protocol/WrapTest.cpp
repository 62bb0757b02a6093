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
  sum.AddElement("\xff\xff");
  sum.AddElement("\x03");
  EXPECT_EQ(sum.CalcSum(), 1);
}

TEST(ParserWrap, HeartIgnoresTheMap) {
  Parser parser;
  std::string out = "previous";
  Parser::Message params{{"identifier", "ClientInfo"}, {"function_name", "recover"}};
  EXPECT_EQ(parser.wrap_heart(out, params), 0);
  EXPECT_EQ(out, "<root><heart /></root>");
}

TEST(ParserWrap, ClientInfoSumsItsThreeBodyTextsAndLeavesTheMap) {
  Parser parser;
  std::string out;
  const Parser::Message original{
      {"identifier", "ClientInfo"}, {"version", "0.1.0"}, {"system", "windows"}, {"language", "CPP"}};
  Parser::Message params = original;
  EXPECT_EQ(parser.wrap_clientinfo(out, params), 0);
  EXPECT_EQ(out,
            "<root><head><identifier>ClientInfo</identifier></head><ClientInfo><version>0.1.0</version>"
            "<system>windows</system><language>CPP</language></ClientInfo><tail><checksum>1243"
            "</checksum></tail></root>");
  EXPECT_EQ(params, original);
}

TEST(ParserWrap, CommandPutsParametersBeforeNameAndErasesHeaderKeys) {
  Parser parser;
  std::string out;
  Parser::Message params{{"timestamp", "5201"}, {"ClientID", "7"}, {"function_name", "move_to_angles"},
                         {"velocity", "0.500000"}, {"block", "1"}};
  EXPECT_EQ(parser.wrap_msg(out, params), 0);
  EXPECT_EQ(out,
            "<root><head><timestamp>5201</timestamp><ClientID>7</ClientID></head><function><parameter>"
            "<block>1</block><velocity>0.500000</velocity></parameter><name>move_to_angles</name>"
            "</function><tail><checksum>1926</checksum></tail></root>");
  EXPECT_EQ(params, (Parser::Message{{"block", "1"}, {"velocity", "0.500000"}}));

  Parser::Message recover{{"timestamp", "5201"}, {"ClientID", "7"}, {"function_name", "recover"}};
  EXPECT_EQ(parser.wrap_msg(out, recover), 0);
  EXPECT_EQ(out,
            "<root><head><timestamp>5201</timestamp><ClientID>7</ClientID></head><function><parameter />"
            "<name>recover</name></function><tail><checksum>758</checksum></tail></root>");
  EXPECT_TRUE(recover.empty());
}

TEST(ParserWrap, ParametersInByteOrderEmptyValuesShortAndHighBytesNegative) {
  Parser parser;
  std::string out;
  Parser::Message params{{"timestamp", "1"}, {"ClientID", "2"}, {"function_name", "f"},
                         {"b", ""}, {"a", "\xff"}, {"Z", "z"}};
  parser.wrap_msg(out, params);
  // 'f' + 'z' + (-1)
  EXPECT_EQ(out,
            "<root><head><timestamp>1</timestamp><ClientID>2</ClientID></head><function><parameter>"
            "<Z>z</Z><a>\xff</a><b /></parameter><name>f</name></function><tail><checksum>223"
            "</checksum></tail></root>");

  Parser::Message negative{{"function_name", "\xff"}};
  parser.wrap_msg(out, negative);
  EXPECT_NE(out.find("<checksum>-1</checksum>"), std::string::npos) << out;
}
