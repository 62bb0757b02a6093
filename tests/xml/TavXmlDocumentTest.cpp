#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "xml/TavXmlDocument.h"

namespace {

// "name=text" for a leaf, "name{child,child}" for a parent.
std::string describe(const TavXmlElement& element) {
  const std::vector<TavXmlElement> children = element.getChildren();
  if (children.empty()) {
    return element.getName() + "=" + element.getText();
  }
  std::string out = element.getName() + "{";
  for (std::size_t i = 0; i < children.size(); ++i) {
    out += (i == 0 ? "" : ",") + describe(children[i]);
  }
  return out + "}";
}

std::string parsed(std::string text) {
  TavXmlDocument document;
  EXPECT_EQ(document.parse(text), 0);
  return describe(document.getRoot());
}

}  // namespace

TEST(TavXmlDocument, BuildsTreesForTheShapesBothSidesWrite) {
  EXPECT_EQ(parsed("<root><head><identifier>Heart</identifier></head></root>"),
            "root{head{identifier=Heart}}");
  EXPECT_EQ(parsed("<root>123</root>"), "root=123");
  EXPECT_EQ(parsed("<root>a>b</root>"), "root=a>b");
  EXPECT_EQ(parsed("<root></root>"), "root=");
  EXPECT_EQ(parsed("<root><a /><b>2</b></root>"), "root{a=,b=2}");
}

TEST(TavXmlDocument, KeepsTheNameSearchQuirks) {
  EXPECT_EQ(parsed("<root><a /><b /></root>"), "root{a=,b /=}");
  EXPECT_EQ(parsed("<root><m>1</m><m>2</m></root>"), "root{m=1,m=1}");
  EXPECT_EQ(parsed("<x><root /><root><a>1</a></root>"), "root=");
  EXPECT_EQ(parsed("abcdeXYZ</root>"), "root=XYZ");
  EXPECT_EQ(parsed("abcdefgh"), "root=fgh");
  EXPECT_EQ(parsed("abcde"), "root=");

  TavXmlDocument document;
  std::string nested = "<a><a>1</a></a>";
  EXPECT_EQ(document._getElement(nested, "a").getText(), "<a>1");
  std::string closeFirst = "</a>x<a>y";
  EXPECT_EQ(document._getElement(closeFirst, "a").getText(), "y");

  std::string root = "<root>T</root>";
  document.parse(root);
  EXPECT_EQ(document.getRoot().getElement(), "<root>T<root/>");
}

TEST(TavXmlDocument, ThrowsOutOfRangeForShapesThatCutPastTheEnd) {
  for (std::string text : {"<root><a/></root>", "<root> <a>1</a></root>", "<root>a<b</root>",
                           "<root>1<a>2</a></root>", "<root>1<a /></root>", "abcd"}) {
    TavXmlDocument document;
    EXPECT_THROW(document.parse(text), std::out_of_range) << text;
  }
}

TEST(TavXmlDocument, ParseAgainReplacesTheWholeTree) {
  TavXmlDocument document;
  std::string first = "<root><a>1</a><b>2</b></root>";
  std::string second = "<root>2</root>";
  document.parse(first);
  document.parse(second);
  EXPECT_EQ(describe(document.getRoot()), "root=2");
}

// Eight siblings of one name all read the first one's text, which again holds eight siblings:
// a text of about 2 KB describes 8^12 elements.
TEST(TavXmlDocument, RefusesTextsThatDescribeExponentiallyLargeTrees) {
  std::string nested = "x";
  for (int level = 0; level < 12; ++level) {
    const std::string name = "n" + std::to_string(level);
    std::string siblings = "<" + name + ">" + nested + "</" + name + ">";
    for (int copy = 1; copy < 8; ++copy) {
      siblings += "<" + name + "></" + name + ">";
    }
    nested = siblings;
  }
  std::string text = "<root>" + nested + "</root>";
  TavXmlDocument document;
  EXPECT_EQ(document.parse(text), TavXmlDocument::kTreeTooLarge);

  std::string fewer = "<root><m><a>1</a><a>2</a></m><m></m></root>";
  EXPECT_EQ(document.parse(fewer), 0);
  EXPECT_EQ(describe(document.getRoot()), "root{m{a=1,a=1},m{a=1,a=1}}");
}
