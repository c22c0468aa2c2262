// The dialogs and the game window's smaller companions: message boxes, the choice menu, the
// output pane, log, viewer, picture, splash, progress and the options window.
#include <sstream>

#include "WindowTestSupport.h"
#include "base/Numbers.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "player/windows/MessageBoxes.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/frmAdvancedSecurity.h"
#include "player/windows/frmGWLLog.h"
#include "player/windows/frmOptions.h"
#include "player/windows/frmPic.h"
#include "player/windows/frmProgress.h"
#include "player/windows/frmSelection.h"
#include "player/windows/frmSplash.h"
#include "player/windows/frmStringVariables.h"

namespace tarve {
namespace {

TEST(ShowMessage, PlatformBoxShowsTheTextAsWrittenAndGivesTheAnswerOfItsButton) {
  for (const auto& [style, yes, answer] :
       {std::tuple{kOkCancel + kExclamation, false, kAnswerCancel}, {kYesNo, true, kAnswerYes}}) {
    int given = 0;
    // Game text is shown as written, not as markup, with the line end as a line break.
    EXPECT_EQ(Answering(
                  [&] {
                    given =
                        ShowMessage(nullptr, "Open <the> door?\r\nA & B", "Tarve", style, false);
                  },
                  yes),
              QStringList{"QMessageBox Tarve: Open <the> door?\nA & B"});
    EXPECT_EQ(given, answer);
  }
}

TEST(DunMsgBox, ShowsTheTextAndItsKeysAndClosingTheFrameGiveTheAnswersOfTheButtons) {
  const auto ok_only = [](frmDunMsgBox* box) {
    EXPECT_EQ(
        box->windowTitle() + "|" + box->txtMessage()->toPlainText() + "|" + box->butOK()->text(),
        "Error|Line one\nLine two|OK");
    EXPECT_TRUE(box->txtMessage()->isReadOnly() && !box->butCancel()->isVisible());
    EXPECT_LE(std::abs(box->butOK()->geometry().center().x() - box->rect().center().x()), 2);
    PressKey(box, Qt::Key_N);  // no No to give
    QApplication::processEvents();
    EXPECT_TRUE(box->isVisible());
    PressKey(box, Qt::Key_Return);
  };
  const auto yes_no = [](frmDunMsgBox* box) {
    EXPECT_EQ(box->butOK()->text() + box->butCancel()->text(), QStringLiteral("&Yes&No"));
    ExpectAccessibleNames(box);
    PressKey(box, Qt::Key_Y);
  };
  // With the focus in the text box the keys still answer.
  const auto n_in_text = [](frmDunMsgBox* box) {
    box->txtMessage()->setFocus();
    PressKey(box, Qt::Key_N);
  };
  const auto close = [](frmDunMsgBox* box) { box->close(); };
  const std::tuple<int, std::function<void(frmDunMsgBox*)>, int> cases[] = {
      {kOkOnly, ok_only, kAnswerOk},
      {kYesNo, yes_no, kAnswerYes},
      {kYesNo + kExclamation, n_in_text, kAnswerNo},
      {kOkCancel, [](frmDunMsgBox* box) { PressKey(box, Qt::Key_Return); }, kAnswerOk},
      // Closing by the frame gives Cancel or No when there is such a button.
      {kYesNo, close, kAnswerNo},
      {kOkOnly, close, kAnswerOk}};
  int number = 0;
  for (const auto& [style, act, answer] : cases) {
    WhenOpens<frmDunMsgBox>(act);
    EXPECT_EQ(ShowMessage(nullptr, "Line one\r\nLine two", "Error", style, true), answer)
        << "case " << number++;
  }
}

// Offers `count` answers, runs `act` on the dialog once it shows and returns what it gave.
int Choose(int count, const std::function<void(frmSelection*)>& act) {
  std::vector<std::string> answers;
  for (int i = 1; i <= count; ++i) answers.push_back("Answer " + std::to_string(i));
  WhenOpens<frmSelection>(act);
  return ShowSelection(nullptr, "What now?", answers);
}

TEST(Selection, OffersAtMostEightAnswersAndGivesTheConfirmedOneOrNone) {
  EXPECT_EQ(Choose(10,
                   [](frmSelection* dialog) {
                     EXPECT_EQ(dialog->lblPrompt()->text(), QStringLiteral("What now?"));
                     EXPECT_TRUE(dialog->optAnswer(0)->isChecked());
                     EXPECT_TRUE(dialog->optAnswer(7)->isVisible());
                     EXPECT_EQ(dialog->optAnswer(7)->text(), QStringLiteral("Answer 8"));
                     ExpectAccessibleNames(dialog);
                     // The arrows move the choice from button to button; Enter confirms it.
                     QApplication::setActiveWindow(dialog);
                     PressKey(dialog, Qt::Key_Down);
                     PressKey(dialog, Qt::Key_Down);
                     PressKey(dialog, Qt::Key_Return);
                   }),
            2);
  // Only the answers offered show; Escape gives none.
  EXPECT_EQ(Choose(3,
                   [](frmSelection* dialog) {
                     EXPECT_FALSE(dialog->optAnswer(3)->isVisible());
                     PressKey(dialog, Qt::Key_Escape);
                   }),
            -1);
  // Nothing to pick: no dialog opens.
  frmSelection empty;
  empty.SetChoices("What now?", {});
  EXPECT_EQ(empty.Run(), -1);
  EXPECT_FALSE(empty.isVisible());
}

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

TEST(GWLLog, TheNewestWholeMessagesStayWithinTheBound) {
  frmGWLLog log(nullptr, 100);
  log.SetText("Tarve 2.17\r\nFinished loading file.\r\n");
  log.AppendMessage("Warning: No such variable 'score'");
  EXPECT_EQ(log.Text(), "Tarve 2.17\nFinished loading file.\nWarning: No such variable 'score'");
  EXPECT_TRUE(log.txtLog()->isReadOnly());
  ExpectAccessibleNames(&log);
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

TEST(StringVariables, EachStoreHasItsHeadingsAndNewContentsReplaceTheRows) {
  using Store = frmStringVariables::Store;
  for (const auto& [store, looks] : {std::pair{Store::kCollectables, "Collectables Collectable"},
                                     {Store::kNumericVariables, "Numeric variables Name"},
                                     {Store::kStringVariables, "String variables Name"}}) {
    const frmStringVariables shown(store);
    EXPECT_EQ(shown.windowTitle() + " " + shown.grdVariables()->horizontalHeaderItem(0)->text(),
              looks);
  }
  frmStringVariables viewer(Store::kStringVariables);
  ExpectAccessibleNames(&viewer);
  viewer.SetContents({{"name", "Ann"}, {"room", "hall"}});
  EXPECT_EQ(viewer.grdVariables()->item(1, 1)->text(), QStringLiteral("hall"));
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
  const QString small = folder.filePath("small.png"), huge = folder.filePath("huge.png");
  ASSERT_TRUE(QImage(120, 80, QImage::Format_RGB32).save(small));
  ASSERT_TRUE(QImage(8000, 2000, QImage::Format_RGB32).save(huge));
  std::ofstream(folder.filePath("broken.png").toStdString()) << "not a picture";
  frmPic pic;
  ASSERT_TRUE(pic.LoadPicture(small.toStdString()));
  // A file that is no picture leaves the window as it was.
  EXPECT_FALSE(pic.LoadPicture(folder.filePath("broken.png").toStdString()));
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

class OptionsWindowTest : public ::testing::Test {
 protected:
  QTemporaryDir data;
  MemorySettingsStore store;
  Settings settings;
};

TEST_F(OptionsWindowTest, ShowsTheSettingsAndOkWritesEveryKeyAsTheControlsStand) {
  // What the player chose before, read back as start-up reads it.
  Settings before;
  before.log_errors = true;
  before.log_file = "/old/errors.log";
  before.security_type = 1;
  before.label_foreground_colour = "112233";
  ASSERT_TRUE(SaveSettings(before, store));
  settings = ReadSettings(store);

  frmOptions options(settings, store, nullptr, data.path().toStdString());
  std::string ticks;
  for (const QAbstractButton* button : std::initializer_list<const QAbstractButton*>{
           options.chkLogScriptErrors(), options.chkOutputToFile(), options.optNoExts(),
           options.chkSpecialMsgBox(), options.chkDetailedLook(),
           options.chkCustomSecurityIsDisallow()}) {
    ticks += button->isChecked() ? '1' : '0';
  }
  EXPECT_EQ(ticks, "101111");
  EXPECT_EQ(options.txtLogFileName()->text() + "|" + options.txtLabelForeground()->text() + "|" +
                options.lblFontSample()->text(),
            "/old/errors.log|112233|Courier New, 8.25 pt");
  // A name or a list only goes with its switch.
  EXPECT_FALSE(options.txtOutputFileName()->isEnabled() || options.butEditShellExts()->isEnabled());

  // Change every control.
  options.chkLogScriptErrors()->setChecked(false);
  options.chkOutputToFile()->setChecked(true);
  QTest::keyClicks(options.txtOutputFileName(), "/logs/game.txt");
  options.optAdvExts()->setChecked(true);
  ASSERT_TRUE(options.butEditShellExts()->isEnabled());
  WhenOpens<frmAdvancedSecurity>([](frmAdvancedSecurity* editor) {
    editor->butRemove()->click();
    editor->butCancel()->click();  // keeps nothing
  });
  options.butEditShellExts()->click();
  QString input;
  WhenOpens<frmAdvancedSecurity>([&input](frmAdvancedSecurity* editor) {
    editor->lstFileTypes()->setCurrentRow(3);  // DLL
    QTest::keyClick(editor->lstFileTypes(), Qt::Key_Delete);
    // Typed types are cut to what the check compares; a listed one is chosen, not added again.
    AnswerInput(QStringLiteral(" .txt "), nullptr, &input);
    editor->butAdd()->click();
    for (const QString& typed : {QStringLiteral("exe"), QString()}) {
      AnswerInput(typed);
      editor->butAdd()->click();
    }
    EXPECT_EQ(editor->lstFileTypes()->currentRow(), 0);
    editor->butOK()->click();
  });
  options.butEditShellExts()->click();
  EXPECT_EQ(input, QStringLiteral("Please enter a file extension:"));
  for (QCheckBox* box : {options.chkZeroSecurityInstalledGames(), options.chkAutoInstall(),
                         options.chkOverrideGameDefaultFont(), options.chkOverrideAllFonts(),
                         options.chkOverrideEffects(), options.chkCustomSecurityIsDisallow(),
                         options.chkSpecialMsgBox(), options.chkDetailedLook()}) {
    box->toggle();
  }
  options.txtLabelForeground()->clear();
  QTest::keyClicks(options.txtLabelForeground(), "00ff00");
  options.txtLabelBackground()->clear();
  QTest::keyClicks(options.txtLabelBackground(), "1g0z1010");  // only hexadecimal digits go in
  EXPECT_EQ(options.txtLabelBackground()->text(), QStringLiteral("101010"));
  EXPECT_EQ(options.lblLabelSample()->palette().color(QPalette::WindowText), QColor(0, 255, 0));

  const QStringList families = QFontDatabase::families();
  ASSERT_FALSE(families.isEmpty());
  QFont picked;
  WhenOpens<QFontDialog>([&](QFontDialog* dialog) {
    QFont wanted(families.last(), 12);
    wanted.setItalic(true);
    dialog->setCurrentFont(wanted);
    picked = dialog->currentFont();
    dialog->accept();
  });
  options.butSetFont()->click();
  EXPECT_NE(picked.family(), QStringLiteral("Courier New"));
  EXPECT_TRUE(options.lblFontSample()->text().startsWith(picked.family() + QStringLiteral(", ")));

  options.butOK()->click();
  EXPECT_EQ(options.result(), QDialog::Accepted);
  // Every key OK writes, as section/key=value.
  std::istringstream written(
      "Options/LogErrors=No Options/LogFile=/old/errors.log Options/OutputFile=Yes "
      "Options/OutFile=/logs/game.txt Options/SpecialMsgBox=No Options/AutoInstall=Yes "
      "Options/DetailedLook=No Options/OverrideGameDefaultFont=Yes Options/OverrideAllFonts=Yes "
      "Options/OverrideEffects=Yes Options/LabelForegroundColour=00FF00 "
      "Options/LabelBackgroundColour=101010 Options/DefaultFontSize=" +
      FormatSingle(static_cast<float>(picked.pointSizeF())) +
      " Options/DefaultFontBold=" + (picked.bold() ? "Yes" : "No") +
      " Options/DefaultFontItalic=" + (picked.italic() ? "Yes" : "No") +
      " Security/SecurityType=3 Security/ZeroSecurityInstalledGames=Yes "
      "Security/NumberCustomSecurity=4 Security/CustomSecurityIsDisallow=No "
      "Security/CustomSecurity1=EXE Security/CustomSecurity2=COM Security/CustomSecurity3=DOC "
      "Security/CustomSecurity4=TXT");
  std::size_t keys = 1;  // and the font's name, which may hold spaces
  EXPECT_EQ(store.Read("Options", "DefaultFontName"), picked.family().toStdString());
  for (std::string key; written >> key; ++keys) {
    const std::size_t slash = key.find('/'), equals = key.find('=');
    EXPECT_EQ(store.Read(key.substr(0, slash), key.substr(slash + 1, equals - slash - 1)),
              key.substr(equals + 1));
  }
  EXPECT_EQ(store.Size(), keys);
  EXPECT_FALSE(settings.special_msg_box);  // the player's settings changed with the store
  EXPECT_EQ(settings.custom_security.back(), "TXT");
}

TEST_F(OptionsWindowTest, EmptyFileNamesBecomeTheDefaultFilesInTheUsersDataFolder) {
  const QByteArray saved = qgetenv("XDG_DATA_HOME");
  qputenv("XDG_DATA_HOME", data.path().toUtf8());
  frmOptions options(settings, store);  // the data folder as the environment names it
  options.chkLogScriptErrors()->setChecked(true);
  options.chkOutputToFile()->setChecked(true);
  options.butOK()->click();
  const std::string folder = data.path().toStdString() + "/Tarve";
  EXPECT_EQ(options.txtLogFileName()->text(), QString::fromStdString(folder + "/TARVELOG.LOG"));
  EXPECT_EQ(store.Read("Options", "OutFile"), folder + "/GAMELOG.LOG");
  EXPECT_EQ(settings.log_file, folder + "/TARVELOG.LOG");
  saved.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", saved);
}

TEST_F(OptionsWindowTest, PagesTheSampleBoxAndCancelWhichChangesNothing) {
  frmOptions options(settings, store, nullptr, data.path().toStdString());
  std::string pages = std::to_string(options.CurrentPage());
  for (QPushButton* page : {options.butFonts(), options.butOther(), options.butLogging()}) {
    page->click();
    pages += std::to_string(options.CurrentPage());
  }
  EXPECT_EQ(pages, "0120");
  EXPECT_FALSE(options.butOther()->isChecked());

  // The style the sample box shows is the one ticked now, before OK.
  for (const bool special : {true, false}) {
    options.chkSpecialMsgBox()->setChecked(special);
    EXPECT_EQ(
        Answering([&] { options.butDemoMsgBox()->click(); }),
        QStringList{QStringLiteral("%1 Tarve: This is the style of message box you have selected.")
                        .arg(special ? "tarve::frmDunMsgBox" : "QMessageBox")});
  }

  // Cancel changes nothing, not even what the font and list editors chose.
  options.optAllExts()->setChecked(true);
  options.optAdvExts()->setChecked(true);
  WhenOpens<frmAdvancedSecurity>([](frmAdvancedSecurity* editor) {
    editor->butRemove()->click();
    editor->butOK()->click();
  });
  options.butEditShellExts()->click();
  WhenOpens<QFontDialog>([](QFontDialog* dialog) {
    QFont bold = dialog->currentFont();
    bold.setBold(true);
    dialog->setCurrentFont(bold);
    dialog->accept();
  });
  options.butSetFont()->click();
  options.butCancel()->click();
  EXPECT_EQ(options.result(), QDialog::Rejected);
  EXPECT_EQ(store.Size(), 0u);
  EXPECT_TRUE(settings.special_msg_box && settings.security_type == 3);
  EXPECT_FALSE(settings.default_font_bold);
  EXPECT_EQ(settings.custom_security, Settings().custom_security);
}

}  // namespace
}  // namespace tarve

// The window tests need one QApplication for the whole run.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Listing the tests, as the build does to register them, needs no windows and no display.
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
