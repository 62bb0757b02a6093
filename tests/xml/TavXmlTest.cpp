#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "xml/TavXmlDocument.h"
#include "xml/TavXmlElement.h"

namespace {

// "name=text" for a leaf, "name{child,child}" for a parent.
std::string Describe(const TavXmlElement& element) {
  if (element.childrenView().empty()) {
    return element.getName() + "=" + element.getText();
  }
  std::string out = element.getName() + "{";
  for (const TavXmlElement& child : element.childrenView()) {
    out += (out.back() == '{' ? "" : ",") + Describe(child);
  }
  return out + "}";
}

}  // namespace

// The short form while the text is empty, texts unescaped; setText inserts without removing,
// linkText writes over the known text's length; positions stay stale after a short form.
TEST(TavXmlElement, KeepsTheQuirksOfItsSerialisedText) {
  TavXmlElement emptyText("a"), raw("a"), root("root"), twice("a"), stale("a");
  emptyText.setText("");
  raw.setText("1<2&3");
  root.linkText("<a>1</a>");
  root.linkText("<b>2</b>");
  twice.setText("old");
  twice.setText("new");
  EXPECT_EQ(TavXmlElement("a").getElement(), "<a />");
  EXPECT_EQ(TavXmlElement().getElement(), "< />");
  EXPECT_EQ(emptyText.getElement(), "<a />");
  EXPECT_EQ(raw.getElement(), "<a>1<2&3</a>");
  EXPECT_EQ(raw.getElement(), "<a>1<2&3</a>");
  EXPECT_EQ(root.getElement(), "<root><a>1</a><b>2</b></root>");
  EXPECT_EQ(twice.getElement(), "<a>newold</a>");
  EXPECT_EQ(twice.getText(), "new");
  twice.linkText("+");
  EXPECT_EQ(twice.getElement(), "<a>new+old</a>");
  ASSERT_EQ(stale.getElement(), "<a />");
  stale.setText("x");
  EXPECT_EQ(stale.getElement(), "<a x/>");
}

// One document reads every text in turn, so each parse must also drop the tree before it.
TEST(TavXmlDocument, BuildsTreesOfTheShapesBothSidesWrite) {
  const struct {
    std::string text, tree;
  } cases[] = {
      {"<root><head><identifier>Heart</identifier></head></root>", "root{head{identifier=Heart}}"},
      {"<root>a>b</root>", "root=a>b"},
      {"<root></root>", "root="},
      {"<root><a /><b>2</b></root>", "root{a=,b=2}"},
      {"<root><a /><b /></root>", "root{a=,b /=}"},
      {"<root><m>1</m><m>2</m></root>", "root{m=1,m=1}"},
      {"<x><root /><root><a>1</a></root>", "root="},
      {"abcdeXYZ</root>", "root=XYZ"},
      {"abcdefgh", "root=fgh"},
      {"abcde", "root="},
  };
  TavXmlDocument document;
  for (auto c : cases) {
    SCOPED_TRACE(c.text);
    ASSERT_EQ(document.parse(c.text), 0);
    EXPECT_EQ(Describe(document.rootView()), c.tree);
  }
}

TEST(TavXmlDocument, KeepsTheNameSearchQuirks) {
  TavXmlDocument document;
  std::string nested = "<a><a>1</a></a>", closeFirst = "</a>x<a>y", root = "<root>T</root>";
  EXPECT_EQ(document._getElement(nested, "a").getText(), "<a>1");
  EXPECT_EQ(document._getElement(closeFirst, "a").getText(), "y");
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

// Eight siblings of one name all read the first one's text, which again holds eight siblings:
// a text of about 2 KB describes 8^12 elements.
TEST(TavXmlDocument, RefusesTextsThatDescribeExponentiallyLargeTrees) {
  std::string nested = "x";
  for (int level = 0; level < 12; ++level) {
    const std::string open = "<n" + std::to_string(level) + ">",
                      close = "</n" + std::to_string(level) + ">";
    std::string siblings = open + nested + close;
    for (int copy = 1; copy < 8; ++copy) {
      siblings += open + close;
    }
    nested = siblings;
  }
  std::string text = "<root>" + nested + "</root>",
              fewer = "<root><m><a>1</a><a>2</a></m><m></m></root>";
  TavXmlDocument document;
  EXPECT_EQ(document.parse(text), TavXmlDocument::kTreeTooLarge);
  EXPECT_EQ(document.parse(fewer), 0);
  EXPECT_EQ(Describe(document.rootView()), "root{m{a=1,a=1},m{a=1,a=1}}");
}
