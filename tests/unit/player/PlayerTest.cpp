#include <gtest/gtest.h>

#include <sstream>

#include "interpreter/ExecuteScript.h"
#include "player/Player.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::RecordingHost;
using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

constexpr const char* kCellar =
    "define game <Cellar>\n"
    "  gwl-version <217>\n"
    "  start <Cellar>\n"
    "  startscript setvar <visits; 0>\n"
    "end define\n"
    "define room <Cellar>\n"
    "  look <Damp walls.>\n"
    "  command <count> setvar <visits; %visits%+1>\n"
    "  command <wait> {\n"
    "    pause <>\n"
    "    msg <Done waiting.>\n"
    "  }\n"
    "end define\n";

// The commands the parser echoed ("> ..." lines).
Lines EchoedCommands(const std::string& output) {
  Lines echoed;
  std::istringstream in(output);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.starts_with("> ")) echoed.push_back(line.substr(2));
  }
  return echoed;
}

// A player with the cellar game written into a fresh folder, and the folder's settings in
// memory.
struct CellarPlayer {
  CellarPlayer() : path(dir.Write("cellar.gwl", kCellar)) {
    start.seed = 1;
    start.program_folder = dir.path();
  }
  TempDir dir;
  TestGame t{dir};
  std::string path;
  Player::StartOptions start;
};

TEST(PlayerStart, AGameOrASavedGameByItsExtensionAndTheLauncherWithoutEither) {
  {
    CellarPlayer c;
    EXPECT_EQ(c.t.player.Start(c.path, c.start), Player::Started::kGame);
    EXPECT_TRUE(c.t.player.game_open());
    EXPECT_TRUE(c.t.player.opened_from_command_line());
    EXPECT_EQ(c.t.host.windows, Lines{"splash closed"});  // no splash with a file named
    EXPECT_EQ(c.t.host.caption, "Tarve 2.17 - \"Cellar\"");
  }
  {
    // The extension is told apart in any case; a saved game is not "opened from the command
    // line", so leaving it goes back to the launcher.
    CellarPlayer c;
    TestGame first(c.dir);
    first.player.Start(c.path, c.start);
    first.host.file_dialog_answers.push_back(c.dir.path() + "/Saved.TSG");
    first.player.MenuSaveAs();
    EXPECT_EQ(c.t.player.Start(c.dir.path() + "/Saved.TSG", c.start), Player::Started::kGame);
    EXPECT_FALSE(c.t.player.opened_from_command_line());
    EXPECT_EQ(c.t.game.world.current_room, "Cellar");
    c.t.player.RequestClose();
    EXPECT_EQ(c.t.host.closed, std::vector<bool>{false});
  }
  {
    // Quotes are part of the name: there is no extension to know the file by.
    CellarPlayer c;
    EXPECT_EQ(c.t.player.Start("\"" + c.path + "\"", c.start), Player::Started::kFailed);
    EXPECT_FALSE(c.t.player.game_open());
    ASSERT_FALSE(c.t.host.messages.empty());
  }
  {
    CellarPlayer c;
    EXPECT_EQ(c.t.player.Start("", c.start), Player::Started::kLauncher);
    EXPECT_EQ(c.t.host.windows, (Lines{"splash", "launcher", "splash closed"}));
    EXPECT_FALSE(c.t.player.game_open());
    c.t.player.SubmitCommand("look");  // no game: nothing runs
    EXPECT_TRUE(c.t.player.OpenGame(c.path));
    EXPECT_FALSE(c.t.player.opened_from_command_line());
  }
}

TEST(PlayerStart, FirstRunSetupClosesTheSplashBeforeItsMessageAndRunsOnce) {
  CellarPlayer c;
  Lines associated;
  c.start.first_run.enabled = true;
  c.start.first_run.associate_file_type = [&](const std::string&, const std::string& ext) {
    associated.push_back(ext);
  };
  c.t.player.Start("", c.start);
  EXPECT_EQ(c.t.host.windows,
            (Lines{"splash", "splash closed", "box Setup Complete", "launcher", "splash closed"}));
  EXPECT_EQ(associated, (Lines{".gwl", ".cgw", ".tsg"}));
  c.t.host.windows.clear();
  c.t.player.Start("", c.start);  // the marker is kept: nothing shows the second time
  EXPECT_EQ(c.t.host.windows, (Lines{"splash", "launcher", "splash closed"}));
}

TEST(PlayerCommandBox, EnterF11F12AndTheKeyWait) {
  CellarPlayer c;
  Player& player = c.t.player;
  c.t.player.Start(c.path, c.start);
  EXPECT_EQ(player.CommandBoxText(CommandBoxKey::kF12), "");  // before any command
  c.t.host.output.clear();
  player.SubmitCommand("");  // an empty box does nothing
  EXPECT_EQ(c.t.host.output, "");
  player.SubmitCommand("Look Around");
  EXPECT_EQ(EchoedCommands(c.t.host.output), Lines{"Look Around"});
  EXPECT_EQ(player.CommandBoxText(CommandBoxKey::kF12), "Look Around");  // as typed
  EXPECT_EQ(player.CommandBoxText(CommandBoxKey::kF11), "");

  // "wait" pauses for a key; the line that ends the wait is a key, not a command.
  c.t.host.input = {"count"};
  c.t.host.output.clear();
  player.SubmitCommand("wait");
  EXPECT_EQ(EchoedCommands(c.t.host.output), Lines{"wait"});
  EXPECT_NE(c.t.host.output.find("Done waiting."), std::string::npos);
  EXPECT_EQ(GetNumericVariable(c.t.game, "visits"), 0);
  EXPECT_EQ(player.last_command(), "wait");

  // While a wait is pending, Enter ends it and nothing runs; any key ends it too.
  c.t.game.output.waiting_for_key = true;
  player.SubmitCommand("count");
  EXPECT_FALSE(player.waiting_for_key());
  EXPECT_EQ(GetNumericVariable(c.t.game, "visits"), 0);
  c.t.game.output.waiting_for_key = true;
  player.KeyPressed();
  EXPECT_FALSE(player.waiting_for_key());
}

TEST(PlayerButtons, SendTheirFixedCommandsButNotDuringAWaitOrOnceTheGameIsOver) {
  TempDir dir;
  TestGame t(dir);
  for (int i = -1; i <= 10; ++i) t.player.PressDirectionButton(i);
  for (int i = -1; i <= 4; ++i) t.player.PressActionButton(i, "Old Lamp");
  t.player.PressActionButton(1, "");  // nothing chosen in the list
  EXPECT_EQ(EchoedCommands(t.host.output),
            (Lines{"north", "south", "west", "east", "out", "help", "northeast", "northwest",
                   "southeast", "southwest", "go to Old Lamp", "look at Old Lamp",
                   "speak to Old Lamp", "take Old Lamp"}));
  EXPECT_EQ(t.player.last_command(), "");  // buttons do not go through the command box

  t.host.output.clear();
  t.game.output.waiting_for_key = true;
  t.player.PressDirectionButton(0);
  t.player.PressActionButton(3, "lamp");
  t.game.output.waiting_for_key = false;
  t.game.run.game_over = true;
  t.player.SubmitCommand("look");
  t.player.PressDirectionButton(0);
  t.player.MenuGameInfo();
  EXPECT_EQ(t.host.output, "");

  using Type = GameWindow::ThingType;
  EXPECT_EQ(Player::ActionButtonsFor(Type::kPlace),
            (std::array<bool, 4>{true, true, false, false}));
  EXPECT_EQ(Player::ActionButtonsFor(Type::kCharacter),
            (std::array<bool, 4>{false, true, true, false}));
  EXPECT_EQ(Player::ActionButtonsFor(Type::kObject),
            (std::array<bool, 4>{false, true, false, true}));
}

TEST(PlayerMenus, RestartDifferentGameAndClosingAskFirst) {
  CellarPlayer c;
  Player& player = c.t.player;
  RecordingHost& host = c.t.host;
  player.Start(c.path, c.start);
  player.SubmitCommand("count");
  ASSERT_EQ(GetNumericVariable(c.t.game, "visits"), 1);

  host.answers = {kAnswerNo};
  player.MenuRestart();
  EXPECT_EQ(host.messages.back(),
            "[Tarve] Do you really want to restart this game from the beginning?");
  EXPECT_EQ(GetNumericVariable(c.t.game, "visits"), 1);
  player.MenuRestart();  // yes: the game starts again from its file
  EXPECT_EQ(GetNumericVariable(c.t.game, "visits"), 0);
  EXPECT_EQ(host.location, "  Cellar");

  host.output.clear();
  player.MenuGameInfo();
  EXPECT_EQ(EchoedCommands(host.output), Lines{"about"});

  host.answers = {kAnswerNo};
  EXPECT_FALSE(player.RequestClose());
  EXPECT_EQ(host.messages.back(), "[Tarve] Do you really want to exit this game?");
  EXPECT_TRUE(host.closed.empty());
  EXPECT_TRUE(player.game_open());

  // A game named on the command line ends the program when it is left by closing its window
  // or by "quit"; Different game always goes back to the launcher.
  host.answers = {kAnswerNo, kAnswerYes};
  player.MenuDifferentGame();
  EXPECT_TRUE(host.closed.empty());
  player.MenuDifferentGame();
  EXPECT_EQ(host.closed, std::vector<bool>{false});
  EXPECT_FALSE(player.game_open());
  EXPECT_EQ(host.services.back(), "midi stop");
  host.output.clear();
  player.SubmitCommand("count");  // the game is closed: nothing runs
  EXPECT_EQ(host.output, "");

  player.OpenGame(c.path);
  player.SubmitCommand("quit");
  EXPECT_EQ(host.closed, (std::vector<bool>{false, true}));
}

TEST(PlayerViews, TheLogWindowAndTheVariableViewersShowTheGamesState) {
  CellarPlayer c;
  Player& player = c.t.player;
  player.Start(c.path, c.start);
  ExecuteScript(c.t.game, "setstring <Colour;red>");
  ExecuteScript(c.t.game, "debug <traced>");

  EXPECT_FALSE(player.log_window_visible());
  player.MenuViewLog();
  EXPECT_TRUE(player.log_window_visible());
  player.LogWindowClosed();  // hidden by its close box, its text kept
  EXPECT_FALSE(player.log_window_visible());
  EXPECT_NE(player.log_text().find("Tarve 2.17\r\nOpening file "), std::string::npos);
  EXPECT_TRUE(player.log_text().ends_with("Finished loading file.\r\ntraced\r\n"));

  using Rows = std::vector<std::pair<std::string, std::string>>;
  auto rows = [&](VariableStore store) {
    Rows result;
    for (const ViewerRow& row : player.ViewerRows(store)) result.emplace_back(row.name, row.value);
    return result;
  };
  const Rows strings = rows(VariableStore::kString);  // the player's own variables among them
  EXPECT_EQ(strings.front(), (std::pair<std::string, std::string>{"Name", "Contents"}));
  EXPECT_EQ(strings.back(), (std::pair<std::string, std::string>{"Colour", "red"}));
  EXPECT_EQ(rows(VariableStore::kNumeric), (Rows{{"Name", "Contents"}, {"visits", "0"}}));
  EXPECT_EQ(rows(VariableStore::kCollectable), (Rows{{"Collectable", "Amount"}}));
  EXPECT_EQ(Player::ViewerCaption(VariableStore::kNumeric), "Numeric variables");
  EXPECT_EQ(Player::ViewerCaption(VariableStore::kCollectable), "Collectables");
}

}  // namespace
}  // namespace tarve
