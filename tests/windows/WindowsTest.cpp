// The desktop program's windows without a display: the game window with the real application and
// a small test game, the launcher, the dialogs and the smaller windows.
#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
#include <deque>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "base/Numbers.h"
#include "desktop/DesktopHost.h"
#include "desktop/DesktopServices.h"
#include "interpreter/Variables.h"
#include "player/Player.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "player/windows/MessageBoxes.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/frmAdvancedSecurity.h"
#include "player/windows/frmDunMsgBox.h"
#include "player/windows/frmEditInstalledList.h"
#include "player/windows/frmGWLLog.h"
#include "player/windows/frmMain.h"
#include "player/windows/frmNewGame.h"
#include "player/windows/frmOptions.h"
#include "player/windows/frmPic.h"
#include "player/windows/frmProgress.h"
#include "player/windows/frmSelection.h"
#include "player/windows/frmSplash.h"
#include "player/windows/frmStringVariables.h"

// Failures name the texts, not their bytes.
void PrintTo(const QString& text, std::ostream* out) { *out << text.toStdString(); }

namespace tarve {
namespace {

// Runs `act` on the modal window once one of kind `Dialog` has opened. After about thirty seconds
// the test fails and closes whatever modal window is open, so that it never hangs.
template <typename Dialog>
void WhenOpens(std::function<void(Dialog*)> act, int tries = 3000) {
  QTimer::singleShot(10, [act = std::move(act), tries]() mutable {
    if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
      act(dialog);
    } else if (tries > 0) {
      WhenOpens<Dialog>(std::move(act), tries - 1);
    } else {
      ADD_FAILURE() << "the expected dialog did not open";
      if (QWidget* modal = QApplication::activeModalWidget()) modal->close();
    }
  });
}

// The window and each control of ours in it (Qt names the parts it builds "qt_...") have a
// name for a screen reader.
void ExpectAccessibleNames(QWidget* window) {
  const QList<QWidget*> controls = window->findChildren<QWidget*>() << window;
  for (QWidget* control : controls) {
    const QString id = control->objectName();
    if (control != window && (id.isEmpty() || id.startsWith("qt_") || control->isHidden()))
      continue;
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name).isEmpty())
        << window->objectName().toStdString() << " " << id.toStdString();
  }
}

// Runs `act`, answering each message box that opens, whichever kind it is, with Yes/OK (`yes`)
// or No/Cancel, each input box and file dialog with `typed`, and closing any other modal window;
// tells for each its kind, title and text (a file dialog's filters).
QStringList Answering(const std::function<void()>& act, bool yes = true,
                      const QString& typed = {}) {
  QStringList opened;
  QPointer<QWidget> last;
  QTimer watch;
  watch.callOnTimeout([&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr) return;
    QString text;
    if (auto* own = qobject_cast<frmDunMsgBox*>(modal)) {
      text = own->txtMessage()->toPlainText();
      (yes ? own->butOK() : own->butCancel())->click();
    } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      text = box->text();
      QAbstractButton* button = box->button(yes ? QMessageBox::Yes : QMessageBox::No);
      (button ? button : box->button(yes ? QMessageBox::Ok : QMessageBox::Cancel))->click();
    } else if (auto* input = qobject_cast<QInputDialog*>(modal)) {
      text = input->labelText();
      input->setTextValue(typed);
      input->accept();
    } else if (auto* files = qobject_cast<QFileDialog*>(modal)) {
      text = files->nameFilters().join(";;");
      // Typed into the name box: selectFile() leaves a focused box alone. A dialog that is not
      // ready yet is answered again at the next look.
      if (auto* name = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))) {
        name->setText(typed);
      } else {
        files->selectFile(typed);
      }
      QMetaObject::invokeMethod(files, "accept");
    } else {
      modal->close();
    }
    if (modal == last) return;
    opened << QStringLiteral("%1 %2: %3")
                  .arg(modal->metaObject()->className(), modal->windowTitle(), text);
    last = modal;
  });
  watch.start(10);
  act();
  return opened;
}

// A key press as the player makes it: to the focused control, from where it may travel up.
void PressKey(QWidget* window, Qt::Key key) {
  QWidget* focus = window->focusWidget();
  QTest::keyClick(focus != nullptr ? focus : window, key);
}

TEST(ShowMessage, EachBoxShowsTheTextAsWrittenAndItsKeysAndFrameGiveTheAnswersOfItsButtons) {
  int given = 0;
  const auto show = [&given](int style) {
    given = ShowMessage(nullptr, "Open <the> door?\r\nA & B", "Tarve", style, false);
  };
  // Game text is shown as written, not as markup, with the line end as a line break.
  const QStringList box{"QMessageBox Tarve: Open <the> door?\nA & B"};
  EXPECT_EQ(Answering([&] { show(kOkCancel + kExclamation); }, false), box);
  EXPECT_EQ(given, kAnswerCancel);
  EXPECT_EQ(Answering([&] { show(kYesNo); }), box);
  EXPECT_EQ(given, kAnswerYes);

  // The program's own box.
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
  EXPECT_EQ(
      Choose(10,
             [](frmSelection* dialog) {
               EXPECT_EQ(dialog->lblPrompt()->text() + "|" + dialog->optAnswer(7)->text(),
                         "What now?|Answer 8");
               EXPECT_TRUE(dialog->optAnswer(0)->isChecked() && dialog->optAnswer(7)->isVisible());
               ExpectAccessibleNames(dialog);
               // The arrows move the choice from button to button; Enter confirms it.
               QApplication::setActiveWindow(dialog);
               PressKey(dialog, Qt::Key_Down);
               PressKey(dialog, Qt::Key_Return);
             }),
      1);
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
  const QTextBlock block = pane.document()->firstBlock();
  const QTextCharFormat kept = block.begin().fragment().charFormat();
  EXPECT_EQ(pane.Text(), QStringLiteral("kept"));
  EXPECT_TRUE(block.blockFormat().alignment() == Qt::AlignRight &&
              kept.fontWeight() == QFont::Bold && kept.fontPointSize() == 12.0);
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
  // 1650 and 4000 twips.
  EXPECT_EQ(QPoint(viewer.grdVariables()->columnWidth(0), viewer.grdVariables()->columnWidth(1)),
            QPoint(110, 267));
  viewer.resize(600, 400);
  QApplication::processEvents();
  EXPECT_EQ(viewer.grdVariables()->geometry(), viewer.rect());
  EXPECT_GT(viewer.grdVariables()->columnWidth(1), 267);
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
  // What the player chose before.
  settings.log_errors = true;
  settings.log_file = "/old/errors.log";
  settings.security_type = 1;
  settings.label_foreground_colour = "112233";

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

  for (QCheckBox* box : {options.chkLogScriptErrors(), options.chkOutputToFile(),
                         options.chkZeroSecurityInstalledGames(), options.chkAutoInstall(),
                         options.chkOverrideGameDefaultFont(), options.chkOverrideAllFonts(),
                         options.chkOverrideEffects(), options.chkCustomSecurityIsDisallow(),
                         options.chkSpecialMsgBox(), options.chkDetailedLook()}) {
    box->toggle();
  }
  QTest::keyClicks(options.txtOutputFileName(), "/logs/game.txt");
  options.optAdvExts()->setChecked(true);
  ASSERT_TRUE(options.butEditShellExts()->isEnabled());
  WhenOpens<frmAdvancedSecurity>([](frmAdvancedSecurity* editor) {
    editor->butRemove()->click();
    editor->butCancel()->click();  // keeps nothing
  });
  options.butEditShellExts()->click();
  WhenOpens<frmAdvancedSecurity>([](frmAdvancedSecurity* editor) {
    editor->lstFileTypes()->setCurrentRow(3);  // DLL
    QTest::keyClick(editor->lstFileTypes(), Qt::Key_Delete);
    // Typed types are cut to what the check compares; a listed one is chosen, not added again.
    QStringList asked;
    for (const char* typed : {" .txt ", "exe", ""}) {
      asked += Answering([editor] { editor->butAdd()->click(); }, true, typed);
    }
    EXPECT_EQ(asked.value(2),
              QStringLiteral("QInputDialog Add file type: Please enter a file extension:"));
    EXPECT_EQ(editor->lstFileTypes()->currentRow(), 0);
    editor->butOK()->click();
  });
  options.butEditShellExts()->click();
  options.txtLabelForeground()->clear();
  QTest::keyClicks(options.txtLabelForeground(), "00ff00");
  options.txtLabelBackground()->clear();
  QTest::keyClicks(options.txtLabelBackground(), "1g0z1010");  // only hexadecimal digits go in
  EXPECT_EQ(options.txtLabelBackground()->text(), QStringLiteral("101010"));
  EXPECT_EQ(options.lblLabelSample()->palette().color(QPalette::WindowText), QColor(0, 255, 0));

  const QStringList families = QFontDatabase::families();
  ASSERT_FALSE(families.isEmpty());
  QFont picked(families.last(), 12);
  picked.setItalic(true);
  WhenOpens<QFontDialog>([&](QFontDialog* dialog) {
    dialog->setCurrentFont(picked);
    picked = dialog->currentFont();
    dialog->accept();
  });
  options.butSetFont()->click();
  EXPECT_NE(picked.family(), QStringLiteral("Courier New"));
  EXPECT_TRUE(options.lblFontSample()->text().startsWith(picked.family() + QStringLiteral(", ")));

  options.butOK()->click();
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

TEST_F(OptionsWindowTest, PagesTheSampleBoxCancelAndTheDefaultFilesForEmptyFileNames) {
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

  // Empty file names become the default files in the user's data folder.
  const QByteArray saved = qgetenv("XDG_DATA_HOME");
  qputenv("XDG_DATA_HOME", data.path().toUtf8());
  frmOptions defaults(settings, store);  // the data folder as the environment names it
  defaults.chkLogScriptErrors()->setChecked(true);
  defaults.chkOutputToFile()->setChecked(true);
  defaults.butOK()->click();
  const std::string folder = data.path().toStdString() + "/Tarve";
  EXPECT_EQ(defaults.txtLogFileName()->text(), QString::fromStdString(folder + "/TARVELOG.LOG"));
  EXPECT_EQ(store.Read("Options", "OutFile"), folder + "/GAMELOG.LOG");
  EXPECT_EQ(settings.log_file, folder + "/TARVELOG.LOG");
  saved.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", saved);
}

const std::string kWindowGame = std::string(TARVE_TEST_GAMES) + "/desktop/window.gwl";

class GameWindowTest : public testing::Test {
 protected:
  GameWindowTest() {
    host_.Attach(*player_);
    services_.Attach(player_->game());
  }
  ~GameWindowTest() override { host_.Detach(); }

  void Open() {
    ASSERT_TRUE(player_->OpenGame(kWindowGame));  // shortcuts need the active window
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  }

  frmMain& window() { return host_.window(); }
  QString Output() { return window().txtOutput()->Text(); }
  QString Location() { return window().lblLocation()->text().trimmed(); }

  void Type(const QString& text) {
    QLineEdit* box = window().txtCommand();
    box->setFocus();
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
  }

  // Runs `act` once the game waits; ends the wait if `act` does not, so that no test hangs.
  void DuringWait(std::function<void()> act, int tries = 6000) {
    QTimer::singleShot(5, &window(), [this, act = std::move(act), tries] {
      if (!player_->waiting_for_key() && !player_->waiting_for_line()) {
        if (tries > 0) return DuringWait(act, tries - 1);
        ADD_FAILURE() << "the game never waited";
        return;
      }
      act();
      QTimer::singleShot(5000, &window(), [this] {
        if (!player_->waiting_for_key() && !player_->waiting_for_line()) return;
        ADD_FAILURE() << "the wait did not end";
        player_->KeyPressed();
        if (player_->waiting_for_line()) player_->SubmitCommand("ended by the test");
      });
    });
  }

  // Bold/italic/underline, colour, size, face and l(eft) or c(entre) of the piece holding `word`.
  std::string Look(const QString& word) {
    const QTextCursor found = window().txtOutput()->document()->find(word);
    const QTextCharFormat format = found.charFormat();
    return QStringLiteral("%1%2%3 %4 %5 %6 %7")
        .arg(format.fontWeight() == QFont::Bold ? "b" : "", format.fontItalic() ? "i" : "",
             format.fontUnderline() ? "u" : "", format.foreground().color().name(),
             QString::number(format.fontPointSize()),
             format.fontFamilies().toStringList().join(','),
             found.blockFormat().alignment() == Qt::AlignHCenter ? "c" : "l")
        .toStdString();
  }

  // 1 per enabled control: box, Run, list, Save, Load, Restart, Game Info, Different Game, Undo;
  // the ten direction buttons.
  std::string Enabled() {
    frmMain& w = window();
    std::string letters;
    for (bool on : {w.txtCommand()->isEnabled(), w.butExecute()->isEnabled(),
                    w.lstObjects()->isEnabled(), w.mnuSave()->isEnabled(), w.mnuLoad()->isEnabled(),
                    w.mnuRestart()->isEnabled(), w.mnuGameInfo()->isEnabled(),
                    w.mnuDifferentGame()->isEnabled(), w.mnuUndo()->isEnabled()}) {
      letters += on ? '1' : '0';
    }
    letters += ' ';
    for (int i = 0; i < 10; ++i) letters += w.butDir(i)->isEnabled() ? '1' : '0';
    return letters;
  }

  // Chooses `thing` in the list (nothing when empty); tells which action buttons show.
  std::string Choose(const QString& thing = {}) {
    QListWidget* list = window().lstObjects();
    if (!thing.isEmpty()) list->setCurrentItem(list->findItems(thing, Qt::MatchExactly).value(0));
    std::string shown;
    for (int i = 0; i < 4; ++i) shown += window().butDo(i)->isHidden() ? "" : std::to_string(i);
    return shown;
  }

  // w, l and g for a shown game window, a shown launcher and an open game.
  std::string Shown() {
    return {window().isVisible() ? 'w' : '-',
            host_.launcher() != nullptr && host_.launcher()->isVisible() ? 'l' : '-',
            player_->game_open() ? 'g' : '-'};
  }

  DesktopHost host_;
  DesktopServices services_{{.keep_pauses = false}};
  std::unique_ptr<Player> player_ = std::make_unique<Player>(Host(host_, host_, host_, services_));
};

TEST_F(GameWindowTest, CommandBoxKeysWaitsAndUndo) {
  Open();
  QLineEdit* box = window().txtCommand();
  const auto key = [box](Qt::Key pressed, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(box, pressed, modifiers);
    return box->text();
  };
  EXPECT_EQ(window().windowTitle(), QStringLiteral("Tarve 2.17 - \"Window Test\""));
  Type(QStringLiteral("look"));
  EXPECT_EQ(box->text(), QString()) << "a command leaves the box empty";
  EXPECT_EQ(Enabled(), "111111110 1000111000") << "a look changes nothing";
  Type(QStringLiteral("styles"));
  QTest::keyClicks(box, QStringLiteral("dra"));
  EXPECT_EQ(key(Qt::Key_F12), QStringLiteral("styles"));
  EXPECT_EQ(box->cursorPosition(), 6);
  EXPECT_EQ(key(Qt::Key_F11), QString());
  // Up and Down walk through the session's commands and back to what was being typed.
  QTest::keyClicks(box, QStringLiteral("dra"));
  QString walk;
  for (Qt::Key pressed : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Up, Qt::Key_Down, Qt::Key_Down}) {
    walk += key(pressed) + ' ';
  }
  EXPECT_EQ(walk, QStringLiteral("styles look look styles dra "));
  // Run on an empty box prints nothing.
  box->clear();
  const QString before = Output();
  window().butExecute()->click();
  EXPECT_EQ(Output(), before);

  // While a move can be taken back, Ctrl+Z takes it back; then it is the box's own again.
  Type(QStringLiteral("north"));
  EXPECT_EQ(Enabled(), "111111111 0110010000");
  QTest::keyClicks(box, QStringLiteral("half typed"));
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Location() + " " + QString::fromStdString(Enabled()), "Hall 111111110 1000111000");
  EXPECT_EQ(key(Qt::Key_Z, Qt::ControlModifier), QString());

  // A key wait disables the controls; a key, Enter (running nothing) or a click ends it.
  std::string during;
  DuringWait([&] {
    during = Enabled();
    PressKey(&window(), Qt::Key_X);
  });
  Type(QStringLiteral("pause"));
  EXPECT_EQ(during, "000000000 0000000000");
  EXPECT_TRUE(box->hasFocus());
  DuringWait([&] {
    box->setText(QStringLiteral("win"));
    PressKey(&window(), Qt::Key_Return);
  });
  Type(QStringLiteral("pause"));
  EXPECT_FALSE(Output().contains(QStringLiteral("> win")));
  DuringWait([&] { QTest::mouseClick(window().txtOutput()->viewport(), Qt::LeftButton); });
  Type(QStringLiteral("pause"));  // returns once the wait is over

  // A line wait takes the next line typed into the box, with only the box enabled.
  DuringWait([&] {
    during = Enabled();
    Type(QStringLiteral("blue"));
  });
  Type(QStringLiteral("ask"));
  Type(QStringLiteral("answer"));
  EXPECT_EQ(during, "100000000 0000000000");
  EXPECT_TRUE(Output().contains(QStringLiteral("You said blue.")));
}

TEST_F(GameWindowTest, StartScriptsWaitInTheShownWindowAndThePaneShowsStylesAndZooms) {
  bool waited = false;
  DuringWait([&] {
    waited = window().isVisible();
    PressKey(&window(), Qt::Key_Space);
  });
  ASSERT_TRUE(player_->OpenGame(std::string(TARVE_TEST_GAMES) + "/desktop/startwait.gwl"));
  EXPECT_TRUE(waited);

  Open();
  for (const char* command : {"styles", "centre", "left", "look"}) Type(command);
  // Plain text has the player's default colour, face and size, from the settings. A new line
  // keeps the alignment of the line before it, until a code changes its own.
  const std::vector<std::pair<QString, std::string>> looks = {
      {"Bold", "b #000000 8.25 Courier New l"},  {"Italic", "i #000000 8.25 Courier New l"},
      {"Under", "u #000000 8.25 Courier New l"}, {"Red", " #ff0000 8.25 Courier New l"},
      {"Big", " #000000 14 Courier New l"},      {"Middle", " #000000 8.25 Courier New c"},
      {"> left", " #000000 8.25 Courier New c"}, {"> look", " #000000 8.25 Courier New l"}};
  for (const auto& [word, look] : looks) EXPECT_EQ(Look(word), look) << word.toStdString();
  // Lines end with paragraph breaks, not with stray characters.
  EXPECT_TRUE(Output().contains(QStringLiteral("\n> styles\nBold Italic Under Red Blue")));
  EXPECT_FALSE(Output().contains(QChar(u'\r')));

  // Zooming scales every size the game chose, is remembered, and goes back exactly.
  const auto zoom = [this](Qt::Key key) {
    for (int i = 0; i < 2; ++i) QTest::keyClick(window().txtCommand(), key, Qt::ControlModifier);
  };
  zoom(Qt::Key_Plus);
  EXPECT_EQ(Look(QStringLiteral("Big")), " #000000 16.8 Courier New l");
  EXPECT_EQ(player_->settings_store().Read("Options", "PaneZoom"), "2");
  Type(QStringLiteral("styles"));
  EXPECT_DOUBLE_EQ(window().txtOutput()->CurrentFontSize(), 8.25);
  frmMain second;
  second.Attach(*player_);
  EXPECT_EQ(second.txtOutput()->zoom(), 2);
  zoom(Qt::Key_Minus);
  EXPECT_EQ(Look(QStringLiteral("Big")), " #000000 14 Courier New l");

  ExpectAccessibleNames(&window());
  // What a turn adds reaches the speech option (and a screen reader, through the toolkit's own
  // text events) once, as a whole, when the event loop runs again.
  QStringList added;
  QObject::connect(window().txtOutput(), &RichOutputPane::textAdded,
                   [&added](const QString& text) { added.append(text); });
  Type(QStringLiteral("look"));
  QApplication::processEvents();
  ASSERT_EQ(added.size(), 1);
  EXPECT_TRUE(added.front().contains(QStringLiteral("> look\n")) &&
              added.front().endsWith(QStringLiteral("A plain hall.\n")));
  // Without a speech engine the option says so and stays off.
  if (!window().SpeechAvailable()) {
    EXPECT_FALSE(window().mnuReadAloud()->isEnabled() || window().mnuReadAloud()->isChecked());
    EXPECT_TRUE(window().mnuReadAloud()->text().contains(QStringLiteral("no speech engine")));
  }
}

TEST_F(GameWindowTest, ButtonsListsViewersAndMenusFollowTheGame) {
  Open();
  // Direction buttons: north, out and northeast in the hall.
  QTest::mouseClick(window().butDir(0), Qt::LeftButton);
  EXPECT_EQ(Location() + " " + QString::fromStdString(Enabled()), "Garden 111111111 0110010000");
  EXPECT_TRUE(window().Timer1()->isActive()) << "a new room lights the label up";
  QTest::mouseClick(window().butDir(1), Qt::LeftButton);
  QTest::mouseClick(window().butDir(6), Qt::LeftButton);
  EXPECT_EQ(Enabled(), "111111111 0000010001");  // southwest only
  window().butDir(9)->click();

  // Action buttons show per kind of entry and act on it.
  EXPECT_EQ(Choose(), "") << "nothing is chosen yet";
  EXPECT_EQ(Choose(QStringLiteral("Butler")), "12");
  EXPECT_EQ(window().butDo(2)->accessibleName(), QStringLiteral("Speak to Butler"));
  window().butDo(2)->click();
  EXPECT_TRUE(Output().contains(QStringLiteral("> speak to Butler\n\"Good evening.\"")));
  EXPECT_EQ(Choose(QStringLiteral("lamp")), "13");
  window().butDo(3)->click();
  EXPECT_TRUE(window().txtItems()->toPlainText().contains(QStringLiteral("lamp")));
  // With the inventory shown come the collectables; a choice answered in its dialog scores.
  WhenOpens<frmSelection>([](frmSelection* selection) { selection->butOK()->click(); });
  Type(QStringLiteral("pick"));
  ASSERT_EQ(window().lstCollectables()->count(), 1);
  EXPECT_EQ(window().lstCollectables()->item(0)->text(), QStringLiteral("Score: 5"));
  EXPECT_EQ(Choose(QStringLiteral("Kitchen")), "01");
  window().butDo(0)->click();
  EXPECT_TRUE(Output().contains(QStringLiteral("Pots and pans.")));
  EXPECT_EQ(Choose(), "") << "a new room's list has nothing chosen";

  window().mnuViewLog()->trigger();
  frmGWLLog* log = window().LogWindow();
  EXPECT_TRUE(log->isVisible() && window().mnuViewLog()->isChecked());
  EXPECT_TRUE(log->txtLog()->toPlainText().contains(QStringLiteral("Finished loading file.")));
  log->close();
  EXPECT_FALSE(window().mnuViewLog()->isChecked() || player_->log_window_visible());
  // Each viewer has its caption and follows the game ("set" makes colour blue).
  const std::pair<VariableStore, QString> viewers[] = {
      {VariableStore::kString, "String variables|blue"},
      {VariableStore::kNumeric, "Numeric variables|"},
      {VariableStore::kCollectable, "Collectables|5"}};
  for (const auto& [store, shown] : viewers) window().mnuViewVariables(store)->trigger();
  Type(QStringLiteral("set"));
  for (const auto& [store, shown] : viewers) {
    const QTableWidget* grid = window().VariablesWindow(store)->grdVariables();
    const QTableWidgetItem* last = grid->item(grid->rowCount() - 1, 1);
    EXPECT_EQ(grid->window()->windowTitle() + "|" + (last ? last->text() : ""), shown);
  }
  window().mnuGameInfo()->trigger();
  EXPECT_TRUE(Output().contains(QStringLiteral("> about")));

  // Pictures open the picture window at their own size, shrunk to the screen when huge; a file
  // that is no picture leaves the window as it was, with a note in the log.
  QTemporaryDir folder;
  const QString small = folder.filePath("small.png"), huge = folder.filePath("huge.png");
  ASSERT_TRUE(QImage(120, 80, QImage::Format_RGB32).save(small));
  ASSERT_TRUE(QImage(8000, 2000, QImage::Format_RGB32).save(huge));
  services_.ShowPicture(small.toStdString());
  frmPic* pic = services_.PictureWindow();
  ASSERT_NE(pic, nullptr);
  services_.ShowPicture(folder.filePath("missing.png").toStdString());
  EXPECT_NE(player_->log_text().find("Warning: Unable to show the picture"), std::string::npos);
  EXPECT_EQ(pic->windowTitle() + QStringLiteral(" %1x%2").arg(pic->width()).arg(pic->height()),
            QStringLiteral("small.png 120x80"));
  services_.ShowPicture(huge.toStdString());
  const QSize room = pic->screen()->availableGeometry().size();
  EXPECT_TRUE(pic->width() <= room.width() && pic->height() <= room.height() &&
              pic->PictureSize() == QSize(8000, 2000));
  EXPECT_NEAR(static_cast<double>(pic->width()) / pic->height(), 4.0, 0.05);
  ExpectAccessibleNames(pic);

  // The options window opens from the menu and its label colours apply.
  WhenOpens<frmOptions>([](frmOptions* options) {
    options->txtLabelBackground()->setText(QStringLiteral("003366"));
    options->butOK()->click();
  });
  window().mnuOptions()->trigger();
  EXPECT_EQ(window().lblLocation()->palette().color(QPalette::Window), QColor(0x00, 0x33, 0x66));

  // Game over leaves only loading, restarting and leaving.
  Type(QStringLiteral("win"));
  EXPECT_EQ(Enabled(), "000011010 0000000000");
  EXPECT_TRUE(window().lblStatus()->text().startsWith(QStringLiteral("GAME OVER")));
}

TEST_F(GameWindowTest, SavingLoadingAndRestartingAskWhereTheyShould) {
  QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("progress.tsg"));
  Open();
  EXPECT_EQ(Answering([this] { window().mnuSaveAs()->trigger(); }, true, path),
            QStringList{"QFileDialog Save the game as: Tarve saved game (*.tsg);;All files (*)"});
  ASSERT_TRUE(QFile::exists(path));

  // Save after loading a saved game overwrites it without asking.
  window().butDir(0)->click();     // to the garden
  player_->OpenGame(kWindowGame);  // a fresh game: nothing saved yet
  Answering([this] { window().mnuLoad()->trigger(); }, true, path);
  EXPECT_EQ(Location(), QStringLiteral("Hall"));
  window().butDir(0)->click();
  EXPECT_TRUE(Answering([this] { window().mnuSave()->trigger(); }).empty());
  QFile saved(path);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  EXPECT_TRUE(saved.readAll().contains("Garden"));

  // Restart asks in the platform's box, or with the setting on in the program's own.
  const QString restart = "Tarve: Do you really want to restart this game from the beginning?";
  for (const bool own : {false, true}) {
    player_->game().settings.special_msg_box = own;
    EXPECT_EQ(Answering([this] { window().mnuRestart()->trigger(); }, own),
              QStringList{(own ? "tarve::frmDunMsgBox " : "QMessageBox ") + restart});
    EXPECT_EQ(Location(), own ? "Hall" : "Garden");
  }
  EXPECT_FALSE(Output().contains(QStringLiteral("> north")));
}

TEST_F(GameWindowTest, LeavingTheGameAsksAndGoesBackToTheLauncher) {
  // Without a game the launcher opens; a game chosen there takes its place.
  EXPECT_EQ(player_->Start("", {}), Player::Started::kLauncher);
  ASSERT_NE(host_.launcher(), nullptr);
  EXPECT_EQ(Shown(), "-l-");
  emit host_.launcher()->playGame(QString::fromStdString(kWindowGame));
  EXPECT_EQ(Shown(), "w-g");
  // Closing the window asks; No keeps the game.
  EXPECT_EQ(Answering([this] { EXPECT_FALSE(window().close()); }, false).size(), 1);
  EXPECT_EQ(Shown(), "w-g");
  // Yes, even during a wait, ends the wait and the game, and the launcher comes back.
  DuringWait([&] { EXPECT_EQ(Answering([this] { EXPECT_TRUE(window().close()); }).size(), 1); });
  Type(QStringLiteral("pause"));  // returns: the wait ended with the game
  EXPECT_EQ(Shown(), "-l-");
  // Leaving for a different game comes back to the same launcher; leaving it ends the program.
  emit host_.launcher()->playGame(QString::fromStdString(kWindowGame));
  Answering([this] { window().mnuDifferentGame()->trigger(); });
  EXPECT_EQ(Shown(), "-l-");
  EXPECT_FALSE(host_.ending());
  host_.launcher()->butExit()->click();
  EXPECT_TRUE(host_.ending());
}

// The launcher shows its own boxes; the game it reads titles with needs a host that says nothing.
class QuietHost : public OutputPane, public Dialogs, public GameWindow, public PlatformServices {
 public:
  void InsertText(std::string_view) override {}
  int ShowMessage(const std::string&, const std::string&, int) override { return kAnswerOk; }
};

const QString kDefaultHelp = QString::fromLatin1(frmNewGame::kDefaultHelp);

class LauncherTest : public ::testing::Test {
 protected:
  LauncherTest() { game.settings.special_msg_box = true; }

  std::string Write(const std::string& name, const std::string& text) {
    const std::string path = folder.filePath(QString::fromStdString(name)).toStdString();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  void Open() {
    launcher = std::make_unique<frmNewGame>(game, store, Chooser());
    launcher->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(launcher.get()));
  }
  // The file dialogs answer from `chosen` in turn (cancelled once it is empty); keeps filters.
  FileChooser Chooser() {
    return [this](QWidget*, const QString&, const QString& filter) {
      filters.push_back(filter);
      const std::optional<std::string> answer = chosen.empty() ? std::nullopt : chosen.front();
      if (!chosen.empty()) chosen.pop_front();
      return answer;
    };
  }
  QStringList ShownGames() {
    QStringList shown;
    for (int slot = 0; slot < frmNewGame::kVisibleGames; ++slot) {
      QPushButton* button = launcher->butInstalledGame(slot);
      if (!button->isHidden()) shown << button->accessibleName();
    }
    return shown;
  }
  // Browses to `path` and, unless AutoInstall did, presses Add; tells the message boxes shown.
  QStringList BrowseAndAdd(const std::string& path) {
    chosen.push_back(path);
    return Answering([this] {
      launcher->butBrowse()->click();
      if (!game.settings.auto_install) launcher->butAdd()->click();
    });
  }

  QTemporaryDir folder;
  QuietHost host;
  Game game{Host(host)};
  MemorySettingsStore store;
  std::deque<std::optional<std::string>> chosen;
  std::vector<QString> filters;
  std::unique_ptr<frmNewGame> launcher;
};

TEST_F(LauncherTest, HelpLineAndEightGamesAtOnceThatTheScrollBarMovesOneAStep) {
  std::vector<InstalledGame> games;
  for (int i = 1; i <= 20; ++i) {
    games.push_back({"Game " + std::to_string(i), "/games/game" + std::to_string(i) + ".gwl"});
  }
  ASSERT_TRUE(WriteInstalledGames(store, games));
  Open();
  EXPECT_TRUE(launcher->windowTitle().startsWith(QStringLiteral("Welcome to Tarve ")));
  EXPECT_EQ(launcher->lblHelp()->text(), kDefaultHelp);
  // Straight from a control to a plain part of the window, and back.
  const std::pair<QWidget*, QString> moves[] = {
      {launcher->butInstalledGame(2), "Click the name of the game you want to play"},
      {launcher.get(), kDefaultHelp},
      {launcher->butAdd(), "Click here to add this game to the list of 'Installed Games' above"},
      {launcher->frameInstalledGames(), kDefaultHelp},
      {launcher->butExit(), "Click here to exit Tarve"},
      {launcher->frameOtherGames(), kDefaultHelp}};
  for (const auto& [part, help] : moves) {
    QTest::mouseMove(part, QPoint(2, 2));
    EXPECT_EQ(launcher->lblHelp()->text(), help) << part->objectName().toStdString();
  }
  // The scroll bar explains itself when it takes the keyboard focus.
  launcher->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(launcher.get()));
  launcher->scrlGamePos()->setFocus(Qt::TabFocusReason);
  EXPECT_EQ(launcher->lblHelp()->text(), "Scroll to see the complete list of installed games");

  QSignalSpy played(launcher.get(), &frmNewGame::playGame);
  QScrollBar* bar = launcher->scrlGamePos();
  ASSERT_EQ(ShownGames().size(), 8);
  EXPECT_EQ(bar->maximum(), 12);
  bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
  EXPECT_EQ(ShownGames().front(), QStringLiteral("Game 2"));
  launcher->butInstalledGame(7)->click();
  // The keyboard walks down the buttons and, at the last, moves the list under it.
  launcher->butInstalledGame(7)->setFocus();
  QTest::keyClick(launcher->butInstalledGame(7), Qt::Key_Down);
  EXPECT_EQ(ShownGames().back(), QStringLiteral("Game 10"));
  EXPECT_TRUE(launcher->butInstalledGame(7)->hasFocus());
  QTest::keyClick(launcher->butInstalledGame(7), Qt::Key_Space);
  ASSERT_EQ(played.count(), 2);
  EXPECT_EQ(played.at(0).at(0).toString() + " " + played.at(1).at(0).toString(),
            QStringLiteral("/games/game9.gwl /games/game10.gwl"));
  QTest::keyClick(launcher->butInstalledGame(7), Qt::Key_PageDown);
  EXPECT_EQ(ShownGames().back(), QStringLiteral("Game 18"));
}

TEST_F(LauncherTest, AddListsGamesWithATitleAndTheLauncherHandsGamesAndSavesToTheProgram) {
  Open();
  EXPECT_FALSE(launcher->butAdd()->isEnabled());  // nothing browsed yet
  QSignalSpy played(launcher.get(), &frmNewGame::playGame);
  QSignalSpy loaded(launcher.get(), &frmNewGame::loadSavedGame);
  QSignalSpy options(launcher.get(), &frmNewGame::optionsRequested);
  QSignalSpy exited(launcher.get(), &frmNewGame::exitRequested);
  // A file without a title is refused with the error box, and can still be played.
  const std::string invalid = Write("readme.txt", "no game in here\n");
  EXPECT_EQ(BrowseAndAdd(invalid),
            QStringList{QString::fromStdString(
                "tarve::frmDunMsgBox Error: Unable to add " + invalid +
                " to the 'Installed Games' list\n- the file appears to be invalid.")});
  EXPECT_EQ(filters.back(), QStringLiteral("All Tarve games (*.gwl *.cgw);;Tarve script files "
                                           "(*.gwl);;Compiled Tarve script (*.cgw);;Text files "
                                           "(*.txt);;All files (*)"));
  EXPECT_EQ(launcher->lblGameFile()->toolTip(), QString::fromStdString(invalid));
  launcher->butPlay()->click();
  // With AutoInstall browsing adds. A compiled game is listed by its path without being opened
  // (this one does not even exist); the same file twice is two entries.
  game.settings.auto_install = true;
  const std::string compiled = folder.filePath("castle.cgw").toStdString();
  EXPECT_TRUE(BrowseAndAdd(compiled).empty());
  const std::string manor = Write("manor.gwl", "define game <Fish & Chips>\nend define\n");
  EXPECT_TRUE(BrowseAndAdd(manor).empty());
  EXPECT_TRUE(BrowseAndAdd(manor).empty());
  // A short list hides the buttons it does not need and cannot scroll; names show as written.
  EXPECT_EQ(ShownGames(),
            (QStringList{QString::fromStdString(compiled), "Fish & Chips", "Fish & Chips"}));
  EXPECT_EQ(launcher->butInstalledGame(1)->text(), QStringLiteral("Fish && Chips"));
  EXPECT_FALSE(launcher->scrlGamePos()->isEnabled());
  EXPECT_EQ(store.Read("Games", "File3"), manor);

  // Without AutoInstall, browsing only chooses; a cancelled dialog keeps the game chosen before.
  game.settings.auto_install = false;
  chosen.push_back(Write("other.gwl", "define game <Other>\nend define\n"));
  launcher->butBrowse()->click();
  launcher->butBrowse()->click();
  EXPECT_EQ(ShownGames().size(), 3);
  EXPECT_EQ(launcher->browsed_file(), folder.filePath("other.gwl").toStdString());
  launcher->butPlay()->click();
  ASSERT_EQ(played.count(), 2);
  EXPECT_EQ(played.at(0).at(0).toString(), QString::fromStdString(invalid));
  EXPECT_EQ(played.at(1).at(0).toString(), folder.filePath("other.gwl"));

  chosen.push_back("/saves/hall.tsg");
  launcher->butLoadSavedGame()->click();
  EXPECT_EQ(filters.back(), QStringLiteral("Tarve saved game (*.tsg);;All files (*)"));
  launcher->butLoadSavedGame()->click();  // cancelled: nothing to load
  ASSERT_EQ(loaded.count(), 1);
  EXPECT_EQ(loaded.at(0).at(0).toString(), QStringLiteral("/saves/hall.tsg"));
  launcher->butOptions()->click();
  EXPECT_EQ(options.count(), 1);
  launcher->butExit()->click();
  launcher->close();  // the window's own close box leaves too
  EXPECT_EQ(exited.count(), 2);
}

TEST_F(LauncherTest, EditedListIsWrittenBackNumberedFromOneWhenTheEditorCloses) {
  ASSERT_TRUE(WriteInstalledGames(
      store,
      {{"Attic", "/g/a.gwl"}, {"Barn", "/g/b.gwl"}, {"Cellar", "/g/c"}, {"Dungeon", "/g/d"}}));
  Open();
  WhenOpens<frmEditInstalledList>([&](frmEditInstalledList* editor) {
    QListWidget* list = editor->lstGames();
    list->setCurrentRow(1);
    EXPECT_EQ(editor->lblGameFile()->text(), QStringLiteral("/g/b.gwl"));
    EXPECT_EQ(Answering([editor] { editor->butEditName()->click(); }, true, "Big Barn"),
              QStringList{"QInputDialog Edit Name: Enter new name for this game:"});
    chosen.push_back("/g/barn2.cgw");
    editor->butChangeFile()->click();
    EXPECT_EQ(editor->lblGameFile()->text(), QStringLiteral("/g/barn2.cgw"));
    editor->butMove()->click();  // Big Barn goes above Attic and stays chosen
    EXPECT_EQ(list->currentRow(), 0);
    list->setCurrentRow(2);
    editor->butRemove()->click();  // Cellar
    EXPECT_EQ(list->currentItem()->text(), QStringLiteral("Dungeon"));
    QTest::keyClick(list, Qt::Key_Up, Qt::ControlModifier);  // Ctrl+Up moves
    // Past either end an entry comes round to the other end.
    for (Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up}) {
      QTest::keyClick(list, key, Qt::ControlModifier);
    }
    EXPECT_EQ(list->currentRow(), 1);
    EXPECT_EQ(store.Read("Games", "Name3"), "Cellar") << "nothing is written while it is open";
    editor->butClose()->click();
  });
  launcher->butEditList()->click();
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "3");
  EXPECT_EQ(store.Read("Games", "File1"), "/g/barn2.cgw");
  EXPECT_FALSE(store.Read("Games", "Name4") || store.Read("Games", "File4"));
  EXPECT_EQ(ShownGames(), (QStringList{"Big Barn", "Dungeon", "Attic"}));

  // From the keyboard: Delete removes, Enter renames, Escape closes and keeps the changes too.
  frmEditInstalledList editor(store, Chooser());
  WhenOpens<QWidget>([&](QWidget*) {
    QTest::keyClick(editor.lstGames(), Qt::Key_Delete);
    Answering([&] { QTest::keyClick(editor.lstGames(), Qt::Key_Return); }, true, "Deep Dungeon");
    PressKey(&editor, Qt::Key_Escape);
  });
  editor.exec();
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "2");
  EXPECT_EQ(store.Read("Games", "Name1"), "Deep Dungeon");
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
