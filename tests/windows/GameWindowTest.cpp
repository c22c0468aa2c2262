// The game window with the real application and a small test game, and the launcher with its
// editor of the installed games.
#include "WindowTestSupport.h"
#include "desktop/DesktopHost.h"
#include "desktop/DesktopServices.h"
#include "interpreter/Variables.h"
#include "player/Player.h"
#include "player/SettingsStore.h"
#include "player/windows/RichOutputPane.h"
#include "player/windows/frmEditInstalledList.h"
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
  QTest::keyClicks(box, QStringLiteral("xyz"));
  EXPECT_EQ(key(Qt::Key_F12), QString()) << "no command yet";
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
  EXPECT_EQ(Location(), QStringLiteral("Hall"));
  EXPECT_EQ(Enabled(), "111111110 1000111000");
  EXPECT_EQ(key(Qt::Key_Z, Qt::ControlModifier), QString());

  // A key wait disables the controls; any key, Enter (which runs nothing) or a click in the
  // text ends it.
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
  EXPECT_EQ(Enabled(), "000011010 0000000000");
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
  EXPECT_TRUE(Answering([this] { window().mnuSave()->trigger(); }).empty());
  QFile saved(path);
  ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
  EXPECT_TRUE(saved.readAll().contains("Garden"));

  // Restart asks in the platform's box, or with the setting on in the program's own; Yes
  // restarts.
  for (const bool own : {false, true}) {
    player_->game().settings.special_msg_box = own;
    EXPECT_EQ(
        Answering([this] { window().mnuRestart()->trigger(); }, own),
        QStringList{
            QStringLiteral("%1 Tarve: Do you really want to restart this game from the beginning?")
                .arg(own ? "tarve::frmDunMsgBox" : "QMessageBox")});
    EXPECT_EQ(Location(), own ? QStringLiteral("Hall") : QStringLiteral("Garden"));
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
  void Open(int installed = 0) {
    std::vector<InstalledGame> games;
    for (int i = 1; i <= installed; ++i) {
      games.push_back({"Game " + std::to_string(i), "/games/game" + std::to_string(i) + ".gwl"});
    }
    EXPECT_TRUE(installed == 0 || WriteInstalledGames(store, games));
    launcher = std::make_unique<frmNewGame>(game, store, Chooser());
    launcher->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(launcher.get()));
  }
  // The file dialogs answer from `chosen` in turn (cancelled when it runs out) and keep the
  // filters they were given.
  FileChooser Chooser() {
    return [this](QWidget*, const QString&, const QString& filter) {
      filters.push_back(filter);
      std::optional<std::string> answer;
      if (!chosen.empty()) {
        answer = chosen.front();
        chosen.pop_front();
      }
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
  Open(20);
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

  // A short list hides the buttons it does not need and has nothing to scroll.
  ASSERT_TRUE(WriteInstalledGames(store, {{"Fish & Chips", "/games/fish.gwl"}}));
  launcher->DisplayInstalledGames();
  EXPECT_EQ(ShownGames(), QStringList{QStringLiteral("Fish & Chips")});
  EXPECT_EQ(launcher->butInstalledGame(0)->text(), QStringLiteral("Fish && Chips"));
  EXPECT_FALSE(bar->isEnabled());
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
  const std::string manor = Write("manor.gwl", "define game <The Manor>\nend define\n");
  EXPECT_TRUE(BrowseAndAdd(manor).empty());
  EXPECT_TRUE(BrowseAndAdd(manor).empty());
  EXPECT_EQ(ShownGames(),
            (QStringList{QString::fromStdString(compiled), "The Manor", "The Manor"}));
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
  ASSERT_TRUE(WriteInstalledGames(store, {{"Attic", "/g/attic.gwl"},
                                          {"Barn", "/g/barn.gwl"},
                                          {"Cellar", "/g/cellar.gwl"},
                                          {"Dungeon", "/g/dungeon.gwl"}}));
  Open();
  QString input_title, input_prompt;
  WhenOpens<frmEditInstalledList>([&](frmEditInstalledList* editor) {
    QListWidget* list = editor->lstGames();
    list->setCurrentRow(1);
    EXPECT_EQ(editor->lblGameFile()->text(), QStringLiteral("/g/barn.gwl"));
    AnswerInput(QStringLiteral("Big Barn"), &input_title, &input_prompt);
    editor->butEditName()->click();
    chosen.push_back("/g/barn2.cgw");
    editor->butChangeFile()->click();
    EXPECT_EQ(filters.back(), DialogFilter(kGameFileFilter));
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
  EXPECT_EQ(input_title + "|" + input_prompt, "Edit Name|Enter new name for this game:");
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "3");
  EXPECT_EQ(store.Read("Games", "File1"), "/g/barn2.cgw");
  EXPECT_FALSE(store.Read("Games", "Name4") || store.Read("Games", "File4"));
  // The launcher shows the list as it now stands.
  EXPECT_EQ(ShownGames(), (QStringList{"Big Barn", "Dungeon", "Attic"}));

  // From the keyboard: Delete removes, Enter renames, and Escape closes the editor and keeps
  // its changes too.
  frmEditInstalledList editor(store, Chooser());
  WhenOpens<QWidget>([&](QWidget*) {
    QTest::keyClick(editor.lstGames(), Qt::Key_Delete);
    AnswerInput(QStringLiteral("Deep Dungeon"));
    QTest::keyClick(editor.lstGames(), Qt::Key_Return);
    PressKey(&editor, Qt::Key_Escape);
  });
  editor.exec();
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "2");
  EXPECT_EQ(store.Read("Games", "Name1"), "Deep Dungeon");
}

}  // namespace
}  // namespace tarve
