// The game window with the real application and a small test game.

#include "WindowTestSupport.h"
#include "desktop/DesktopHost.h"
#include "desktop/DesktopServices.h"
#include "interpreter/Variables.h"
#include "player/Player.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/frmGWLLog.h"
#include "player/windows/frmMain.h"
#include "player/windows/frmNewGame.h"
#include "player/windows/frmOptions.h"
#include "player/windows/frmPic.h"
#include "player/windows/frmSelection.h"
#include "player/windows/frmStringVariables.h"

namespace tarve {
namespace {

const std::string kWindowGame = std::string(TARVE_TEST_GAMES) + "/desktop/window.gwl";

// Picks `path` in the next file dialog; records its filters.
void AnswerFileDialog(const QString& path, QStringList* filters = nullptr, int tries = 50) {
  WhenOpens<QFileDialog>([=](QFileDialog* dialog) {
    if (filters != nullptr) *filters = dialog->nameFilters();
    // Typed into the name box: selectFile() leaves a focused box alone.
    if (auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))) {
      name->setText(path);
    } else {
      dialog->selectFile(path);
    }
    QMetaObject::invokeMethod(dialog, "accept");
    if (dialog->isVisible() && tries > 0) AnswerFileDialog(path, nullptr, tries - 1);
  });
}

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
    const QTextDocument* document = window().txtOutput()->document();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
      for (auto it = block.begin(); !it.atEnd(); ++it) {
        if (!it.fragment().text().contains(word)) continue;
        const QTextCharFormat format = it.fragment().charFormat();
        return QStringLiteral("%1%2%3 %4 %5 %6 %7")
            .arg(format.fontWeight() == QFont::Bold ? "b" : "", format.fontItalic() ? "i" : "",
                 format.fontUnderline() ? "u" : "", format.foreground().color().name(),
                 QString::number(format.fontPointSize()),
                 format.fontFamilies().toStringList().join(','),
                 block.blockFormat().alignment() == Qt::AlignHCenter ? "c" : "l")
            .toStdString();
      }
    }
    return "no text " + word.toStdString();
  }

  // 1 per enabled control: box, Run, list, Save, Load, Restart, Game Info, Different Game; the
  // ten direction buttons.
  std::string Enabled() {
    frmMain& w = window();
    std::string letters;
    for (bool on :
         {w.txtCommand()->isEnabled(), w.butExecute()->isEnabled(), w.lstObjects()->isEnabled(),
          w.mnuSave()->isEnabled(), w.mnuLoad()->isEnabled(), w.mnuRestart()->isEnabled(),
          w.mnuGameInfo()->isEnabled(), w.mnuDifferentGame()->isEnabled()}) {
      letters += on ? '1' : '0';
    }
    letters += ' ';
    for (int i = 0; i < 10; ++i) letters += w.butDir(i)->isEnabled() ? '1' : '0';
    return letters;
  }

  // Chooses `thing` in the list (nothing when empty); tells which action buttons show.
  std::vector<int> Choose(const QString& thing = {}) {
    QListWidget* list = window().lstObjects();
    if (!thing.isEmpty()) list->setCurrentItem(list->findItems(thing, Qt::MatchExactly).value(0));
    std::vector<int> shown;
    for (int i = 0; i < 4; ++i) {
      if (!window().butDo(i)->isHidden()) shown.push_back(i);
    }
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
  QTest::keyClicks(box, QStringLiteral("xyz"));
  EXPECT_EQ(key(Qt::Key_F12), QString()) << "no command yet";
  Type(QStringLiteral("look"));
  EXPECT_EQ(box->text(), QString()) << "a command leaves the box empty";
  EXPECT_FALSE(window().mnuUndo()->isEnabled()) << "a look changes nothing";
  Type(QStringLiteral("styles"));
  QTest::keyClicks(box, QStringLiteral("dra"));
  EXPECT_EQ(key(Qt::Key_F12), QStringLiteral("styles"));
  EXPECT_EQ(box->cursorPosition(), 6);
  EXPECT_EQ(key(Qt::Key_F11), QString());
  // Up and Down walk through the session's commands and back to what was being typed.
  QTest::keyClicks(box, QStringLiteral("dra"));
  EXPECT_EQ(key(Qt::Key_Up), QStringLiteral("styles"));
  key(Qt::Key_Up);
  EXPECT_EQ(key(Qt::Key_Up), QStringLiteral("look"));
  key(Qt::Key_Down);
  EXPECT_EQ(key(Qt::Key_Down), QStringLiteral("dra"));
  // Enter or Run on an empty box prints nothing.
  box->clear();
  const QString before = Output();
  key(Qt::Key_Return);
  window().butExecute()->click();
  EXPECT_EQ(Output(), before);

  // While a move can be taken back, Ctrl+Z takes it back; then it is the box's own again.
  Type(QStringLiteral("north"));
  EXPECT_TRUE(window().mnuUndo()->isEnabled());
  EXPECT_FALSE(window().butDir(0)->isEnabled());
  QTest::keyClicks(box, QStringLiteral("half typed"));
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Location(), QStringLiteral("Hall"));
  EXPECT_TRUE(window().butDir(0)->isEnabled());
  EXPECT_FALSE(window().mnuUndo()->isEnabled());
  EXPECT_EQ(key(Qt::Key_Z, Qt::ControlModifier), QString());

  // A key wait disables the controls; any key, Enter (which runs nothing) or a click in the
  // text ends it.
  std::string during;
  DuringWait([&] {
    during = Enabled();
    PressKey(&window(), Qt::Key_X);
  });
  Type(QStringLiteral("pause"));
  EXPECT_EQ(during, "00000000 0000000000");
  EXPECT_EQ(Enabled(), "11111111 1000111000");
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
  EXPECT_EQ(during, "10000000 0000000000");
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
  EXPECT_EQ(Location(), QStringLiteral("Garden"));
  EXPECT_EQ(Enabled(), "11111111 0110010000");  // south and west
  EXPECT_TRUE(window().Timer1()->isActive()) << "a new room lights the label up";
  QTest::mouseClick(window().butDir(1), Qt::LeftButton);
  QTest::mouseClick(window().butDir(6), Qt::LeftButton);
  EXPECT_EQ(Enabled(), "11111111 0000010001");  // southwest only
  window().butDir(9)->click();

  // Action buttons show per kind of entry and act on it.
  EXPECT_TRUE(Choose().empty()) << "nothing is chosen yet";
  EXPECT_EQ(Choose(QStringLiteral("Butler")), (std::vector<int>{1, 2}));
  EXPECT_EQ(window().butDo(2)->accessibleName(), QStringLiteral("Speak to Butler"));
  window().butDo(2)->click();
  EXPECT_TRUE(Output().contains(QStringLiteral("> speak to Butler\n\"Good evening.\"")));
  EXPECT_EQ(Choose(QStringLiteral("lamp")), (std::vector<int>{1, 3}));
  window().butDo(3)->click();
  EXPECT_TRUE(window().txtItems()->toPlainText().contains(QStringLiteral("lamp")));
  // With the inventory shown come the collectables; a choice answered in its dialog scores.
  ASSERT_EQ(window().lstCollectables()->count(), 1);
  WhenOpens<frmSelection>([](frmSelection* selection) { selection->butOK()->click(); });
  Type(QStringLiteral("pick"));
  EXPECT_EQ(window().lstCollectables()->item(0)->text(), QStringLiteral("Score: 5"));
  EXPECT_EQ(Choose(QStringLiteral("Kitchen")), (std::vector<int>{0, 1}));
  window().butDo(0)->click();
  EXPECT_TRUE(Output().contains(QStringLiteral("Pots and pans.")));
  EXPECT_TRUE(Choose().empty()) << "a new room's list has nothing chosen";

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

  // Pictures open the picture window, or a note in the log.
  QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("map.png"));
  ASSERT_TRUE(QImage(64, 48, QImage::Format_RGB32).save(path));
  services_.ShowPicture(path.toStdString());
  ASSERT_NE(services_.PictureWindow(), nullptr);
  EXPECT_EQ(services_.PictureWindow()->PictureSize(), QSize(64, 48));
  services_.ShowPicture(folder.filePath(QStringLiteral("missing.png")).toStdString());
  EXPECT_NE(player_->log_text().find("Warning: Unable to show the picture"), std::string::npos);

  // The options window opens from the menu and its label colours apply.
  WhenOpens<frmOptions>([](frmOptions* options) {
    options->txtLabelBackground()->setText(QStringLiteral("003366"));
    options->butOK()->click();
  });
  window().mnuOptions()->trigger();
  EXPECT_EQ(window().lblLocation()->palette().color(QPalette::Window), QColor(0x00, 0x33, 0x66));

  // Game over leaves only loading, restarting and leaving.
  Type(QStringLiteral("win"));
  EXPECT_EQ(Enabled(), "00001101 0000000000");
  EXPECT_TRUE(window().lblStatus()->text().startsWith(QStringLiteral("GAME OVER")));
}

TEST_F(GameWindowTest, SavingLoadingAndRestartingAskWhereTheyShould) {
  QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("progress.tsg"));
  Open();
  QStringList filters;
  AnswerFileDialog(path, &filters);
  window().mnuSaveAs()->trigger();
  EXPECT_EQ(filters.join(";;"), QStringLiteral("Tarve saved game (*.tsg);;All files (*)"));
  ASSERT_TRUE(QFile::exists(path));

  // Save after loading a saved game overwrites it without asking.
  window().butDir(0)->click();     // to the garden
  player_->OpenGame(kWindowGame);  // a fresh game: nothing saved yet
  AnswerFileDialog(path);
  window().mnuLoad()->trigger();
  EXPECT_EQ(Location(), QStringLiteral("Hall"));
  window().butDir(0)->click();
  bool asked = false;
  QTimer guard;  // closes a dialog that should not open, so that the test does not hang
  guard.callOnTimeout([&] {
    if (QWidget* modal = QApplication::activeModalWidget()) asked = modal->close();
  });
  guard.start(50);
  window().mnuSave()->trigger();
  guard.stop();
  EXPECT_FALSE(asked);
  QFile saved(path);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  EXPECT_TRUE(saved.readAll().contains("Garden"));

  // Restart asks in the platform's box, or with the setting on in the program's own; Yes
  // restarts.
  player_->game().settings.special_msg_box = false;
  QString text;
  bool own_box = true;
  AnswerMessage(false, &text, &own_box);
  window().mnuRestart()->trigger();
  EXPECT_FALSE(own_box);
  EXPECT_EQ(text, QStringLiteral("Do you really want to restart this game from the beginning?"));
  EXPECT_EQ(Location(), QStringLiteral("Garden"));
  player_->game().settings.special_msg_box = true;
  AnswerMessage(true, nullptr, &own_box);
  window().mnuRestart()->trigger();
  EXPECT_TRUE(own_box);
  EXPECT_EQ(Location(), QStringLiteral("Hall"));
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
  AnswerMessage(false);
  EXPECT_FALSE(window().close());
  EXPECT_EQ(Shown(), "w-g");
  // Yes, even during a wait, ends the wait and the game, and the launcher comes back.
  DuringWait([&] {
    AnswerMessage(true);
    EXPECT_TRUE(window().close());
  });
  Type(QStringLiteral("pause"));  // returns: the wait ended with the game
  EXPECT_EQ(Shown(), "-l-");
  // Leaving for a different game comes back to the same launcher; leaving it ends the program.
  emit host_.launcher()->playGame(QString::fromStdString(kWindowGame));
  AnswerMessage(true);
  window().mnuDifferentGame()->trigger();
  EXPECT_EQ(Shown(), "-l-");
  EXPECT_FALSE(host_.ending());
  host_.launcher()->butExit()->click();
  EXPECT_TRUE(host_.ending());
}

}  // namespace
}  // namespace tarve
