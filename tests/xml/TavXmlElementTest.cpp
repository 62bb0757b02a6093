#include <gtest/gtest.h>

#include "xml/TavXmlElement.h"

TEST(TavXmlElement, WritesShortFormWhileTextIsEmptyAndTextsUnescaped) {
  TavXmlElement emptyText("a");
  emptyText.setText("");
  EXPECT_EQ(TavXmlElement("a").getElement(), "<a />");
  EXPECT_EQ(emptyText.getElement(), "<a />");
  EXPECT_EQ(TavXmlElement().getElement(), "< />");
  TavXmlElement raw("a");
  raw.setText("1<2&3");
  EXPECT_EQ(raw.getElement(), "<a>1<2&3</a>");
  EXPECT_EQ(raw.getElement(), "<a>1<2&3</a>");
}

TEST(TavXmlElement, SetTextInsertsWithoutRemovingAndLinkTextReplacesTheKnownLength) {
  TavXmlElement root("root");
  root.linkText("<a>1</a>");
  root.linkText("<b>2</b>");
  EXPECT_EQ(root.getElement(), "<root><a>1</a><b>2</b></root>");
  TavXmlElement twice("a");
  twice.setText("old");
  twice.setText("new");
  EXPECT_EQ(twice.getElement(), "<a>newold</a>");
  EXPECT_EQ(twice.getText(), "new");
  twice.linkText("+");
  EXPECT_EQ(twice.getElement(), "<a>new+old</a>");
}

TEST(TavXmlElement, PositionsStayStaleAfterShortFormRewriteAndSetNameBreaksTheClosingTag) {
  TavXmlElement stale("a");
  ASSERT_EQ(stale.getElement(), "<a />");
  stale.setText("x");
  EXPECT_EQ(stale.getElement(), "<a x/>");

  TavXmlElement unnamed, named("a");
  unnamed.setText("x");
  unnamed.setName("a");
  EXPECT_EQ(unnamed.getElement(), "<a>x<a/>");
  named.setText("x");
  named.setName("bb");
  EXPECT_EQ(named.getElement(), "<bb>x<bb>");
  EXPECT_EQ(named.getName() + named.getText(), "bbx");
}

TEST(TavXmlElement, ChildrenAreInvisibleAndCopiesIndependent) {
  TavXmlElement parent("p"), child("c");
  parent.setChildren(child);
  EXPECT_EQ(parent.getElement(), "<p />");
  TavXmlElement copy(parent);
  parent.setText("t");
  parent.setChildren(child);
  EXPECT_EQ(copy.getElement(), "<p />");
  EXPECT_EQ(copy.getChildren().size(), 1u);
  EXPECT_EQ(parent.getChildren().size(), 2u);
}
