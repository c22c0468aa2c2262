#include <gtest/gtest.h>

#include <functional>

#include "player/OpenGame.h"
#include "player/Player.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using Lines = std::vector<std::string>;

// What the terminal shows of a start is in the startup transcripts; here the windows of the
// desktop program: the splash, the launcher and the first run's set-up, which runs once.
TEST(PlayerStart, SplashLauncherAndFirstRunSetupShowInTheirOrder) {
  test::TempDir dir;
  const std::string path = dir.Write("cellar.gwl", "define game <Cellar>\nend define\n");
  Player::StartOptions start;
  start.program_folder = dir.path();
  {
    test::TestGame t(dir);
    EXPECT_EQ(t.player.Start(path, start), Player::Started::kGame);
    EXPECT_TRUE(t.player.opened_from_command_line());
    EXPECT_EQ(t.host.windows, Lines{"splash closed"});  // no splash with a file named
  }
  test::TestGame t(dir);
  Lines associated;
  start.first_run.enabled = true;
  start.first_run.associate_file_type = [&](const std::string&, const std::string& extension) {
    associated.push_back(extension);
  };
  EXPECT_EQ(t.player.Start("", start), Player::Started::kLauncher);
  EXPECT_EQ(t.host.windows,
            (Lines{"splash", "splash closed", "box Setup Complete", "launcher", "splash closed"}));
  EXPECT_EQ(associated, (Lines{".gwl", ".cgw", ".tsg"}));
  t.host.windows.clear();
  t.player.Start("", start);  // the marker is kept: nothing shows the second time
  EXPECT_EQ(t.host.windows, (Lines{"splash", "launcher", "splash closed"}));
  t.player.SubmitCommand("look");  // no game: nothing runs
  EXPECT_TRUE(t.player.OpenGame(path));
  EXPECT_FALSE(t.player.opened_from_command_line());
}

// A game whose game block holds `game_lines`, opened with the settings `prepare` leaves.
struct Opened {
  explicit Opened(const std::string& game_lines,
                  const std::function<void(Settings&)>& prepare = {}) {
    if (prepare) prepare(t.game.settings);
    t.game.settings.log_file = dir.path() + "/game.log";
    EXPECT_TRUE(OpenGame(t.game, dir.Write("game.gwl", "define game <Opening>\n" + game_lines +
                                                           "end define\n"
                                                           "define room <Hall>\nend define\n")));
  }
  test::TempDir dir;
  test::TestGame t{dir};
};

// A game without a version is in parser/odd-commands.tt.
TEST(OpenGame, VersionAndStartChecksWarnButNeverStopTheOpening) {
  const std::string future = "Warning: File contains future version header (greater than 217).";
  const std::string unrecognised = "Warning: Unrecognised GWL version number.";
  const std::string newer_box =
      "[Tarve version error] Warning - this game has been designed to work with a newer version "
      "of Tarve. As a result, some elements may not work correctly or at all. It is strongly "
      "suggested that you upgrade your version of Tarve.";
  const std::vector<std::pair<std::string, Lines>> cases = {
      {"gwl-version < 210 >\nstart <Hall>\n", {}},
      // Rounded half to even before the comparison: 217.5 is 218, 216.5 is 216.
      {"gwl-version <217.5>\nstart <Hall>\n", {future, unrecognised}},
      {"gwl-version <99999>\nstart <Hall>\n", {future, unrecognised}},
      {"gwl-version <216.5>\nstart <Hall>\n", {unrecognised}},
      {"gwl-version <abc>\nstart <Hall>\n",
       {"Warning: File contains invalid version header.", unrecognised}},
      {"gwl-version <200>\ngwl-version <abc>\nstart <Hall>\n", {}},  // only the first counts
      {"gwl-version <217>\n",
       {"Warning: The game has no 'start' line, so play begins in no room."}},
      {"gwl-version <217>\nstart <Attic>\n", {"Warning: The start room 'Attic' does not exist."}},
  };
  for (const auto& [lines, warnings] : cases) {
    Opened opened(lines);
    Lines logged = opened.t.host.log;
    std::erase_if(logged, [](const std::string& line) { return !line.starts_with("Warning"); });
    EXPECT_EQ(logged, warnings) << lines;
    const bool newer = !warnings.empty() && warnings[0] == future;
    EXPECT_EQ(opened.t.host.messages, newer ? Lines{newer_box} : Lines{}) << lines;
    EXPECT_EQ(opened.t.host.message_styles,
              newer ? std::vector{kOkOnly + kExclamation} : std::vector<int>{})
        << lines;
  }
}

TEST(OpenGame, SetsTheCaptionProgressAndDebugMenuAndMarksTheLogFileOrNotesItUnwritable) {
  Opened opened("gwl-version <217>\nstart <Hall>\nnodebug on\nNODEBUG\n",
                [](Settings& s) { s.log_errors = true; });
  EXPECT_EQ(opened.t.host.caption, "Tarve 2.17 - \"Opening\"");
  EXPECT_EQ(opened.t.host.progress, (Lines{"Initialising... 0", "Initialising... 20",
                                           "Initialising... 30", "Initialising... 40", "closed"}));
  EXPECT_EQ(opened.t.host.controls, "Bc+bf");  // busy while opening, then playable
  EXPECT_TRUE(opened.t.host.debug_menu_shown && opened.t.game.run.debug_allowed);
  const Opened nodebug("  nodebug  \nstart <Hall>\n");  // nodebug must be the whole line
  EXPECT_FALSE(nodebug.t.host.debug_menu_shown || nodebug.t.game.run.debug_allowed);

  // Every new game in the log file after the first is marked off from the one before.
  const std::string first = test::ReadFile(opened.t.game.settings.log_file);
  ASSERT_TRUE(OpenGame(opened.t.game, opened.dir.path() + "/game.gwl"));
  EXPECT_EQ(
      test::ReadFile(opened.t.game.settings.log_file)
          .substr(first.size())
          .find("\r\n\r\n--------------------------\r\n\r\n(Start of new game)\r\nTarve 2.17\r\n"),
      0u);
  // A file that cannot be written is noted once, until another file is named.
  Settings& settings = opened.t.game.settings;
  settings.log_file = opened.dir.path() + "/missing/folder/script.log";
  opened.t.host.log.clear();
  LogScriptError(opened.t.game, "one");
  LogScriptError(opened.t.game, "two");
  EXPECT_EQ(opened.t.host.log,
            (Lines{"one",
                   "Warning: Unable to write to the log file " + settings.log_file +
                       " - messages go to the log window only.",
                   "two"}));
  settings.log_file = opened.dir.path() + "/script.log";
  LogScriptError(opened.t.game, "three");
  EXPECT_EQ(test::ReadFile(settings.log_file), "three\r\n");
}

TEST(OpenGame, TheGamesDefaultFontAppliesUnlessThePlayerForbidsIt) {
  const std::string fonts =
      "default fontname <Arial>\ndefault fontsize <9>\n"
      "default fontname <Verdana>\ndefault fontsize <12.5>\nstart <Hall>\n";
  const Opened plain(fonts);
  EXPECT_EQ(plain.t.game.output.current_default_font_name, "Verdana");
  EXPECT_FLOAT_EQ(plain.t.game.output.current_default_font_size, 12.5f);
  EXPECT_NE(plain.t.host.styled.find("{font:Verdana}{size:12.5}{/b}{/i}"), std::string::npos);
  for (bool all_fonts : {false, true}) {
    const Opened forbidden(fonts, [all_fonts](Settings& s) {
      (all_fonts ? s.override_all_fonts : s.override_game_default_font) = true;
      s.default_font_name = "Mono";
      s.default_font_size = 11;
    });
    EXPECT_EQ(forbidden.t.game.output.current_default_font_name, "Mono");
    EXPECT_FLOAT_EQ(forbidden.t.game.output.current_default_font_size, 11);
  }
  // An empty name and a size of 0 fall back to the player's own.
  const Opened empty("default fontname <>\ndefault fontsize <none>\nstart <Hall>\n");
  EXPECT_EQ(empty.t.game.output.current_default_font_name, "Courier New");
  EXPECT_FLOAT_EQ(empty.t.game.output.current_default_font_size, 8.25f);
}

}  // namespace
}  // namespace tarve
