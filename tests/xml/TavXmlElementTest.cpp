#include <gtest/gtest.h>

#include "xml/TavXmlElement.h"

TEST(TavXmlElement, WritesShortFormWhileTextIsEmpty) {
  TavXmlElement fresh("a");
  EXPECT_EQ(fresh.getElement(), "<a />");
  TavXmlElement emptyText("a");
  emptyText.setText("");
  EXPECT_EQ(emptyText.getElement(), "<a />");
  TavXmlElement unnamed;
  EXPECT_EQ(unnamed.getElement(), "< />");
}

TEST(TavXmlElement, SetTextInsertsUnescapedBehindOpeningTagAndKeepsOldText) {
  TavXmlElement element("a");
  element.setText("1<2&3");
  EXPECT_EQ(element.getElement(), "<a>1<2&3</a>");
  EXPECT_EQ(element.getElement(), "<a>1<2&3</a>");
  element.setText("new");
  EXPECT_EQ(element.getElement(), "<a>new1<2&3</a>");
  EXPECT_EQ(element.getText(), "new");
}

TEST(TavXmlElement, LinkTextReplacesOnlyTheLastKnownTextLength) {
  TavXmlElement root("root");
  root.linkText("<a>1</a>");
  root.linkText("<b>2</b>");
  EXPECT_EQ(root.getElement(), "<root><a>1</a><b>2</b></root>");
  EXPECT_EQ(root.getText(), "<a>1</a><b>2</b>");

  TavXmlElement twice("a");
  twice.setText("old");
  twice.setText("new");
  twice.linkText("+");
  EXPECT_EQ(twice.getElement(), "<a>new+old</a>");
}

TEST(TavXmlElement, PositionsStayStaleAfterShortFormRewrite) {
  TavXmlElement element("a");
  ASSERT_EQ(element.getElement(), "<a />");
  element.setText("x");
  EXPECT_EQ(element.getElement(), "<a x/>");
}

TEST(TavXmlElement, SetNameBreaksTheClosingTag) {
  TavXmlElement unnamed;
  unnamed.setText("x");
  unnamed.setName("a");
  EXPECT_EQ(unnamed.getElement(), "<a>x<a/>");
  EXPECT_EQ(unnamed.getName(), "a");

  TavXmlElement named("a");
  named.setText("x");
  named.setName("bb");
  EXPECT_EQ(named.getElement(), "<bb>x<bb>");
  EXPECT_EQ(named.getName(), "bb");
  EXPECT_EQ(named.getText(), "x");
}

TEST(TavXmlElement, ChildrenAreInvisibleAndCopiesIndependent) {
  TavXmlElement parent("p");
  TavXmlElement child("c");
  child.setText("1");
  parent.setChildren(child);
  EXPECT_EQ(parent.getElement(), "<p />");
  ASSERT_EQ(parent.getChildren().size(), 1u);
  EXPECT_EQ(parent.getChildren()[0].getElement(), "<c>1</c>");

  TavXmlElement copy(parent);
  parent.setText("t");
  parent.setChildren(child);
  EXPECT_EQ(copy.getElement(), "<p />");
  EXPECT_EQ(copy.getChildren().size(), 1u);
  EXPECT_EQ(parent.getChildren().size(), 2u);
}
