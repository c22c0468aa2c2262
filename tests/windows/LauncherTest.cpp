// The launcher and its editor of the installed games.

#include "WindowTestSupport.h"
#include "game/Game.h"
#include "game/Host.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "player/windows/frmEditInstalledList.h"
#include "player/windows/frmNewGame.h"

namespace tarve {
namespace {

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
  frmNewGame& Open(int installed = 0) {
    std::vector<InstalledGame> games;
    for (int i = 1; i <= installed; ++i) {
      games.push_back({"Game " + std::to_string(i), "/games/game" + std::to_string(i) + ".gwl"});
    }
    EXPECT_TRUE(installed == 0 || WriteInstalledGames(store, games));
    launcher = std::make_unique<frmNewGame>(game, store, Chooser());
    launcher->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(launcher.get()));
    return *launcher;
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
      if (!launcher->butInstalledGame(slot)->isHidden()) {
        shown << launcher->butInstalledGame(slot)->accessibleName();
      }
    }
    return shown;
  }
  // Browses to `path` and, unless AutoInstall did, presses Add; tells the title and text of
  // each message box that showed (answered with OK).
  QStringList BrowseAndAdd(const std::string& path) {
    chosen.push_back(path);
    QStringList boxes;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&boxes] {
      auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (modal == nullptr) return;
      const auto* own = qobject_cast<frmDunMsgBox*>(modal);
      const auto* box = qobject_cast<QMessageBox*>(modal);
      boxes << modal->windowTitle() + ": " +
                   (own != nullptr ? own->txtMessage()->toPlainText() : box->text());
      modal->accept();
    });
    watch.start(10);
    launcher->butBrowse()->click();
    if (!game.settings.auto_install) launcher->butAdd()->click();
    return boxes;
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
  const std::vector<std::pair<QWidget*, QString>> controls = {
      {launcher->butInstalledGame(2), "Click the name of the game you want to play"},
      {launcher->butAdd(), "Click here to add this game to the list of 'Installed Games' above"},
      {launcher->butExit(), "Click here to exit Tarve"}};
  for (const auto& [control, help] : controls) {
    // Straight from the control to a plain part of the window, and back.
    for (QWidget* part :
         std::initializer_list<QWidget*>{launcher.get(), launcher->frameInstalledGames(),
                                         launcher->frameOtherGames(), launcher->lblHelp()}) {
      QTest::mouseMove(control);
      EXPECT_EQ(launcher->lblHelp()->text(), help) << control->objectName().toStdString();
      QTest::mouseMove(part, QPoint(2, 2));
      EXPECT_EQ(launcher->lblHelp()->text(), kDefaultHelp) << part->objectName().toStdString();
    }
  }
  // The scroll bar explains itself when it takes the keyboard focus.
  launcher->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(launcher.get()));
  launcher->scrlGamePos()->setFocus(Qt::TabFocusReason);
  EXPECT_EQ(launcher->lblHelp()->text(), "Scroll to see the complete list of installed games");

  QSignalSpy played(launcher.get(), &frmNewGame::playGame);
  QScrollBar* bar = launcher->scrlGamePos();
  ASSERT_EQ(ShownGames().size(), 8);
  EXPECT_EQ(ShownGames().front(), QStringLiteral("Game 1"));
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
  EXPECT_EQ(played.at(0).at(0).toString(), QStringLiteral("/games/game9.gwl"));
  EXPECT_EQ(played.at(1).at(0).toString(), QStringLiteral("/games/game10.gwl"));
  QTest::keyClick(launcher->butInstalledGame(7), Qt::Key_PageDown);
  EXPECT_EQ(ShownGames().back(), QStringLiteral("Game 18"));

  // A short list hides the buttons it does not need and has nothing to scroll.
  ASSERT_TRUE(WriteInstalledGames(store, {{"Fish & Chips", "/games/fish.gwl"}}));
  launcher->DisplayInstalledGames();
  EXPECT_EQ(ShownGames(), QStringList{QStringLiteral("Fish & Chips")});
  EXPECT_EQ(launcher->butInstalledGame(0)->text(), QStringLiteral("Fish && Chips"));
  EXPECT_FALSE(bar->isEnabled());
}

TEST_F(LauncherTest, AddRefusesFilesWithoutATitleWithTheErrorBoxAndAddsTheRest) {
  Open();
  EXPECT_FALSE(launcher->butAdd()->isEnabled());  // nothing browsed yet
  const auto refused = [](const std::string& path, const char* why) {
    return QStringList{QString::fromStdString("Error: Unable to add " + path +
                                              " to the 'Installed Games' list\n- " + why)};
  };
  const std::string here = folder.path().toStdString();  // a folder is no game file
  EXPECT_EQ(BrowseAndAdd(here), refused(here, "the file could not be opened."));
  const std::string notes = Write("notes.txt", "define room <hall>\nend define\n");
  EXPECT_EQ(BrowseAndAdd(notes), refused(notes, "the file appears to be invalid."));
  EXPECT_TRUE(ShownGames().empty());
  EXPECT_FALSE(store.Read("Games", "NumInstalled"));

  // A compiled game is listed by its path without being opened: this one does not even exist.
  const std::string compiled = folder.filePath("castle.cgw").toStdString();
  EXPECT_TRUE(BrowseAndAdd(compiled).empty());
  const std::string manor = Write("manor.gwl", "define game <The Manor>\nend define\n");
  EXPECT_TRUE(BrowseAndAdd(manor).empty());
  EXPECT_TRUE(BrowseAndAdd(manor).empty());  // the same file twice is two entries
  EXPECT_EQ(ShownGames(),
            (QStringList{QString::fromStdString(compiled), "The Manor", "The Manor"}));
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "3");
  EXPECT_EQ(store.Read("Games", "File3"), manor);
}

TEST_F(LauncherTest, AutoInstallAndWhatTheLauncherHandsToTheProgram) {
  game.settings.auto_install = true;
  Open();
  QSignalSpy played(launcher.get(), &frmNewGame::playGame);
  QSignalSpy loaded(launcher.get(), &frmNewGame::loadSavedGame);
  QSignalSpy options(launcher.get(), &frmNewGame::optionsRequested);
  QSignalSpy exited(launcher.get(), &frmNewGame::exitRequested);
  const std::string invalid = Write("readme.txt", "no game in here\n");
  const QStringList boxes = BrowseAndAdd(invalid);
  EXPECT_EQ(boxes.size(), 1);
  EXPECT_EQ(filters.back(), QStringLiteral("All Tarve games (*.gwl *.cgw);;Tarve script files "
                                           "(*.gwl);;Compiled Tarve script (*.cgw);;Text files "
                                           "(*.txt);;All files (*)"));
  // The browsed file can still be played.
  EXPECT_EQ(launcher->lblGameFile()->toolTip(), QString::fromStdString(invalid));
  launcher->butPlay()->click();
  const std::string manor = Write("manor.gwl", "define game <Manor>\nend define\n");
  EXPECT_TRUE(BrowseAndAdd(manor).empty());
  EXPECT_EQ(ShownGames(), QStringList{QStringLiteral("Manor")});

  // Without AutoInstall, browsing only chooses; a cancelled dialog keeps the game chosen before.
  game.settings.auto_install = false;
  chosen.push_back(Write("other.gwl", "define game <Other>\nend define\n"));
  launcher->butBrowse()->click();
  launcher->butBrowse()->click();
  EXPECT_EQ(ShownGames().size(), 1);
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
