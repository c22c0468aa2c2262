// The output pane's bounds: how much of a long session it keeps, and what survives a trim.
#include <gtest/gtest.h>

#include <QTextBlock>
#include <QTextDocument>
#include <string>

#include "player/windows/RichOutputPane.h"

namespace tarve {
namespace {

TEST(RichOutputPane, KeepsTheNewestParagraphsOnceOverTwiceItsBound) {
  RichOutputPane pane(nullptr, /*max_paragraphs=*/10, /*max_characters=*/100000);
  pane.SetAlignment(Qt::AlignHCenter);
  for (int i = 0; i < 20; ++i) pane.InsertText("Line " + std::to_string(i) + "\r\n");
  EXPECT_TRUE(pane.Text().startsWith(QStringLiteral("Line 0\n"))) << "nothing goes before twice";
  for (int i = 20; i < 25; ++i) pane.InsertText("Line " + std::to_string(i) + "\r\n");
  // Trimmed at 22 paragraphs down to 10 (the last one the empty line being written), then four
  // more lines.
  EXPECT_EQ(pane.document()->blockCount(), 14);
  EXPECT_TRUE(pane.Text().startsWith(QStringLiteral("Line 12\nLine 13\n")));
  EXPECT_TRUE(pane.Text().endsWith(QStringLiteral("Line 24\n")));
  // The first kept line keeps its own alignment, and printing goes on with the same styles.
  EXPECT_EQ(pane.document()->firstBlock().blockFormat().alignment(), Qt::AlignHCenter);
  pane.SetAlignment(Qt::AlignLeft);
  pane.InsertText("after");
  EXPECT_EQ(pane.document()->lastBlock().text(), QStringLiteral("after"));
  EXPECT_EQ(pane.document()->firstBlock().blockFormat().alignment(), Qt::AlignHCenter);
}

TEST(RichOutputPane, OneEndlessLineLosesItsStart) {
  RichOutputPane pane(nullptr, /*max_paragraphs=*/1000, /*max_characters=*/100);
  pane.InsertText("first line\r\n");
  for (int i = 0; i < 30; ++i) pane.InsertText("abcdefghi" + std::to_string(i % 10));
  const QString text = pane.Text();
  EXPECT_FALSE(text.contains(QStringLiteral("first line")));
  EXPECT_LE(text.size(), 200);
  EXPECT_GE(text.size(), 99);
  EXPECT_TRUE(text.endsWith(QStringLiteral("abcdefghi9")));
}

TEST(RichOutputPane, ClearingKeepsTheStylesAtTheInsertionPoint) {
  RichOutputPane pane;
  pane.SetBold(true);
  pane.SetFontSize(12);
  pane.SetAlignment(Qt::AlignRight);
  pane.InsertText("gone\r\n");
  pane.ClearOutput();
  pane.InsertText("kept");
  EXPECT_EQ(pane.Text(), QStringLiteral("kept"));
  const QTextBlock block = pane.document()->firstBlock();
  EXPECT_EQ(block.blockFormat().alignment(), Qt::AlignRight);
  EXPECT_EQ(block.begin().fragment().charFormat().fontWeight(), QFont::Bold);
  EXPECT_DOUBLE_EQ(block.begin().fragment().charFormat().fontPointSize(), 12.0);
}

}  // namespace
}  // namespace tarve
