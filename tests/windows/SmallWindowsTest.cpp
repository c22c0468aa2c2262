// The game window's smaller companions: the output pane, log, viewer, picture, splash, progress.

#include "WindowTestSupport.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/frmGWLLog.h"
#include "player/windows/frmPic.h"
#include "player/windows/frmProgress.h"
#include "player/windows/frmSplash.h"
#include "player/windows/frmStringVariables.h"

namespace tarve {
namespace {

TEST(RichOutputPane, KeepsTheNewestTextOnceOverItsBoundsAndClearingKeepsTheStyles) {
  RichOutputPane pane(nullptr, /*max_paragraphs=*/10, /*max_characters=*/100000);
  pane.SetAlignment(Qt::AlignHCenter);
  for (int i = 0; i < 20; ++i) pane.InsertText("Line " + std::to_string(i) + "\r\n");
  EXPECT_TRUE(pane.Text().startsWith(QStringLiteral("Line 0\n"))) << "nothing goes before twice";
  for (int i = 20; i < 25; ++i) pane.InsertText("Line " + std::to_string(i) + "\r\n");
  // Trimmed at 22 paragraphs down to 10 (the last one the empty line being written), then four
  // more lines.
  EXPECT_EQ(pane.document()->blockCount(), 14);
  EXPECT_TRUE(pane.Text().startsWith(QStringLiteral("Line 12\nLine 13\n")));
  // The first kept line keeps its own alignment, and printing goes on with the same styles.
  pane.SetAlignment(Qt::AlignLeft);
  pane.InsertText("after");
  EXPECT_TRUE(pane.Text().endsWith(QStringLiteral("Line 24\nafter")));
  EXPECT_EQ(pane.document()->firstBlock().blockFormat().alignment(), Qt::AlignHCenter);

  // One endless line loses its start.
  RichOutputPane line(nullptr, /*max_paragraphs=*/1000, /*max_characters=*/100);
  line.InsertText("first line\r\n");
  for (int i = 0; i < 30; ++i) line.InsertText("abcdefghi" + std::to_string(i % 10));
  const QString text = line.Text();
  EXPECT_FALSE(text.contains(QStringLiteral("first line")));
  EXPECT_TRUE(text.size() >= 99 && text.size() <= 200) << text.size();
  EXPECT_TRUE(text.endsWith(QStringLiteral("abcdefghi9")));

  pane.SetBold(true);
  pane.SetFontSize(12);
  pane.SetAlignment(Qt::AlignRight);
  pane.ClearOutput();
  pane.InsertText("kept");
  EXPECT_EQ(pane.Text(), QStringLiteral("kept"));
  const QTextBlock block = pane.document()->firstBlock();
  EXPECT_EQ(block.blockFormat().alignment(), Qt::AlignRight);
  EXPECT_EQ(block.begin().fragment().charFormat().fontWeight(), QFont::Bold);
  EXPECT_DOUBLE_EQ(block.begin().fragment().charFormat().fontPointSize(), 12.0);
}

TEST(GWLLog, ClosingHidesAndKeepsTheTextAndTheNewestWholeMessagesStayWithinTheBound) {
  frmGWLLog log(nullptr, 100);
  log.SetText("Tarve 2.17\r\nFinished loading file.\r\n");
  log.AppendMessage("Warning: No such variable 'score'");
  log.show();
  log.close();
  EXPECT_FALSE(log.isVisible());
  log.show();
  EXPECT_EQ(log.Text(), "Tarve 2.17\nFinished loading file.\nWarning: No such variable 'score'");
  EXPECT_TRUE(log.txtLog()->isReadOnly());
  ExpectAccessibleNames(&log);
  log.resize(500, 300);
  EXPECT_EQ(log.txtLog()->geometry(), log.rect());

  std::string long_log;
  for (int i = 10; i < 60; ++i) {
    log.AppendMessage("message " + std::to_string(i));
    long_log += "message " + std::to_string(i) + "\r\n";
  }
  // Appended messages and text for reopening over the bound both keep the newest whole ones.
  for (int pass = 0; pass < 2; ++pass) {
    const std::string text = log.Text();
    EXPECT_TRUE(text.size() <= 100 && text.starts_with("message ") && text.ends_with("message 59"))
        << "pass " << pass << ": " << text;
    log.SetText(long_log);
  }
}

TEST(StringVariables, EachStoreHasItsHeadingsAndSettingOneRowChangesOnlyThatRow) {
  using Store = frmStringVariables::Store;
  for (const auto& [store, looks] : {std::pair{Store::kCollectables, "Collectables Collectable"},
                                     {Store::kNumericVariables, "Numeric variables Name"}}) {
    const frmStringVariables shown(store);
    EXPECT_EQ(shown.windowTitle() + " " + shown.grdVariables()->horizontalHeaderItem(0)->text(),
              looks);
  }
  frmStringVariables viewer(Store::kStringVariables);
  EXPECT_EQ(viewer.windowTitle(), QStringLiteral("String variables"));
  ExpectAccessibleNames(&viewer);
  viewer.SetContents({{"name", "Ann"}, {"weapon", "sword"}, {"room", "hall"}});
  viewer.SetRow(1, "weapon", "axe");
  EXPECT_EQ(viewer.grdVariables()->item(1, 1)->text(), QStringLiteral("axe"));
  EXPECT_EQ(viewer.grdVariables()->item(2, 1)->text(), QStringLiteral("hall"));
  viewer.SetRow(4, "gold", "12");
  EXPECT_EQ(viewer.RowCount(), 5);
  EXPECT_EQ(viewer.grdVariables()->item(4, 0)->text(), QStringLiteral("gold"));
  viewer.SetContents({{"only", "one"}});
  EXPECT_EQ(viewer.RowCount(), 1);

  // The grid follows the window.
  viewer.show();
  EXPECT_EQ(viewer.grdVariables()->columnWidth(0), 110);  // 1650 twips
  EXPECT_EQ(viewer.grdVariables()->columnWidth(1), 267);  // 4000 twips
  viewer.resize(600, 400);
  QApplication::processEvents();
  EXPECT_EQ(viewer.grdVariables()->geometry(), viewer.rect());
  EXPECT_GT(viewer.grdVariables()->columnWidth(1), 267);
}

TEST(Pic, WindowTakesThePictureSizeAndShrinksAHugeOneToTheScreen) {
  QTemporaryDir folder;
  const QString small = folder.filePath("small.png"), huge = folder.filePath("huge.png"),
                broken = folder.filePath("broken.png");
  ASSERT_TRUE(QImage(120, 80, QImage::Format_RGB32).save(small));
  ASSERT_TRUE(QImage(8000, 2000, QImage::Format_RGB32).save(huge));
  std::ofstream(broken.toStdString()) << "not a picture";

  frmPic pic;
  ASSERT_TRUE(pic.LoadPicture(small.toStdString()));
  EXPECT_EQ(pic.size(), QSize(120, 80));
  EXPECT_EQ(pic.windowTitle(), QStringLiteral("small.png"));
  // A file that is no picture, or none at all, leaves the window as it was.
  EXPECT_FALSE(pic.LoadPicture(broken.toStdString()));
  EXPECT_FALSE(pic.LoadPicture(folder.filePath(QStringLiteral("missing.png")).toStdString()));
  EXPECT_EQ(pic.windowTitle(), QStringLiteral("small.png"));
  EXPECT_EQ(pic.size(), QSize(120, 80));

  ASSERT_TRUE(pic.LoadPicture(huge.toStdString()));
  const QSize room = pic.screen()->availableGeometry().size();
  EXPECT_TRUE(pic.width() <= room.width() && pic.height() <= room.height());
  EXPECT_NEAR(static_cast<double>(pic.width()) / pic.height(), 4.0, 0.05);
  ExpectAccessibleNames(&pic);
}

TEST(SplashAndProgress, ShowTheirTextsTheBarStaysInRangeAndEscapeClosesTheSplash) {
  frmSplash splash("Version 2.17");
  splash.ShowNow();
  EXPECT_EQ(splash.lblVersion()->text(), QStringLiteral("Version 2.17"));
  ExpectAccessibleNames(&splash);
  PressKey(&splash, Qt::Key_Escape);
  EXPECT_FALSE(splash.isVisible());

  frmProgress progress;
  progress.SetCaption("Initialising...");
  progress.ShowNow();
  EXPECT_EQ(progress.lblCaption()->text(), QStringLiteral("Initialising..."));
  ExpectAccessibleNames(&progress);
  for (const auto& [set, shown] : {std::pair{40, 40}, {250, 100}, {-3, 0}}) {
    progress.SetProgress(set);
    EXPECT_EQ(progress.prgProgress()->value(), shown) << set;
  }
}

}  // namespace
}  // namespace tarve
