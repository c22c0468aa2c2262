#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "player/OpenGame.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadFile;
using test::RecordingHost;
using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

// A game whose game block holds `game_lines`, with a plain start room.
std::string GameWith(std::string_view game_lines) {
  return "define game <Opening>\n" + std::string(game_lines) +
         "end define\n"
         "define room <Hall>\n"
         "end define\n"
         "define room <Cellar>\n"
         "end define\n";
}

bool Open(TestGame& t, const TempDir& dir, std::string_view source,
          const std::string& name = "game.gwl") {
  return OpenGame(t.game, dir.Write(name, source));
}

Lines Warnings(const RecordingHost& host) {
  Lines warnings;
  std::copy_if(host.log.begin(), host.log.end(), std::back_inserter(warnings),
               [](const std::string& line) { return line.starts_with("Warning"); });
  return warnings;
}

TEST(OpenGame, VersionChecksWarnButNeverStopTheOpening) {
  const std::string future = "Warning: File contains future version header (greater than 217).";
  const std::string invalid = "Warning: File contains invalid version header.";
  const std::string unrecognised = "Warning: Unrecognised GWL version number.";
  struct Case {
    std::string tag;
    Lines warnings;
    bool message_box;
  };
  const std::vector<Case> cases = {
      {"gwl-version < 210 >\n", {}, false},
      {"gwl-version <217>\n", {}, false},
      // Rounded half to even before the comparison: 217.5 is 218, 216.5 is 216. A plain newer
      // version, its box and its log are the player/future-version transcript.
      {"gwl-version <217.5>\n", {future, unrecognised}, true},
      {"gwl-version <99999>\n", {future, unrecognised}, true},
      {"gwl-version <216.5>\n", {unrecognised}, false},
      {"gwl-version <abc>\n", {invalid, unrecognised}, false},
      {"gwl-version <150>\n", {unrecognised}, false},
      {"", {"Warning: File contains no version header."}, false},
      // Only the first version line counts.
      {"gwl-version <200>\ngwl-version <abc>\n", {}, false},
  };
  for (const Case& c : cases) {
    TempDir dir;
    TestGame t(dir);
    EXPECT_TRUE(Open(t, dir, GameWith(c.tag + "start <Hall>\n"))) << c.tag;
    EXPECT_EQ(Warnings(t.host), c.warnings) << c.tag;
    if (c.message_box) {
      ASSERT_EQ(t.host.messages.size(), 1u) << c.tag;
      EXPECT_EQ(t.host.message_styles[0], kOkOnly + kExclamation);
    } else {
      EXPECT_TRUE(t.host.messages.empty()) << c.tag;
    }
  }
}

TEST(OpenGame, SetsTheNameCaptionAndProgress) {
  TempDir dir;
  TestGame t(dir);
  const std::string path = dir.Write("game.gwl", GameWith("gwl-version <217>\nstart <Hall>\n"));
  ASSERT_TRUE(OpenGame(t.game, path));
  // What opening a game logs is in every transcript's log.
  EXPECT_EQ(t.game.run.game_name, "Opening");
  EXPECT_EQ(t.host.caption, "Tarve 2.17 - \"Opening\"");
  EXPECT_EQ(t.game.run.game_version, 217);
  EXPECT_EQ(t.host.progress, (Lines{"Initialising... 0", "Initialising... 20", "Initialising... 30",
                                    "Initialising... 40", "closed"}));
  EXPECT_FALSE(t.host.busy);
  EXPECT_TRUE(t.host.controls_enabled);
}

TEST(OpenGame, NodebugMustBeTheWholeLine) {
  {
    TempDir dir;
    TestGame t(dir);
    ASSERT_TRUE(Open(t, dir, GameWith("  nodebug  \nstart <Hall>\n")));
    EXPECT_FALSE(t.game.run.debug_allowed);
    EXPECT_FALSE(t.host.debug_menu_shown);
  }
  {
    TempDir dir;
    TestGame t(dir);
    ASSERT_TRUE(Open(t, dir, GameWith("nodebug on\nNODEBUG\nstart <Hall>\n")));
    EXPECT_TRUE(t.game.run.debug_allowed);
    EXPECT_TRUE(t.host.debug_menu_shown);
  }
}

TEST(OpenGame, TheGamesDefaultFontAppliesUnlessThePlayerForbidsIt) {
  const std::string tags =
      "default fontname <Arial>\ndefault fontsize <9>\n"
      "default fontname <Verdana>\ndefault fontsize <12.5>\nstart <Hall>\n";
  {
    TempDir dir;
    TestGame t(dir);
    ASSERT_TRUE(Open(t, dir, GameWith(tags)));
    EXPECT_EQ(t.game.output.current_default_font_name, "Verdana");
    EXPECT_FLOAT_EQ(t.game.output.current_default_font_size, 12.5f);
    EXPECT_NE(t.host.styled.find("{font:Verdana}{size:12.5}{/b}{/i}"), std::string::npos);
  }
  for (bool all_fonts : {false, true}) {
    TempDir dir;
    TestGame t(dir);
    t.game.settings.default_font_name = "Liberation Mono";
    t.game.settings.default_font_size = 11;
    (all_fonts ? t.game.settings.override_all_fonts : t.game.settings.override_game_default_font) =
        true;
    ASSERT_TRUE(Open(t, dir, GameWith(tags)));
    EXPECT_EQ(t.game.output.current_default_font_name, "Liberation Mono");
    EXPECT_FLOAT_EQ(t.game.output.current_default_font_size, 11);
  }
  {
    // An empty name and a size of 0 fall back to the player's own.
    TempDir dir;
    TestGame t(dir);
    ASSERT_TRUE(
        Open(t, dir, GameWith("default fontname <>\ndefault fontsize <none>\nstart <Hall>\n")));
    EXPECT_EQ(t.game.output.current_default_font_name, "Courier New");
    EXPECT_FLOAT_EQ(t.game.output.current_default_font_size, 8.25f);
  }
}

TEST(OpenGame, AMissingOrUnknownStartRoomIsWarnedAndTheGameOpens) {
  {
    TempDir dir;
    TestGame t(dir);
    EXPECT_TRUE(Open(t, dir, GameWith("gwl-version <217>\n")));
    EXPECT_EQ(Warnings(t.host),
              Lines{"Warning: The game has no 'start' line, so play begins in no room."});
    EXPECT_EQ(t.game.world.current_room, "");
  }
  {
    TempDir dir;
    TestGame t(dir);
    EXPECT_TRUE(Open(t, dir, GameWith("gwl-version <217>\nstart <Attic>\n")));
    EXPECT_EQ(Warnings(t.host), Lines{"Warning: The start room 'Attic' does not exist."});
  }
}

TEST(OpenGame, TheGameLogFileMarksEveryNewGame) {
  TempDir dir;
  TestGame t(dir);
  const std::string log = dir.path() + "/game.log";
  t.game.settings.log_errors = true;
  t.game.settings.log_file = log;
  const std::string source = GameWith("gwl-version <217>\nstart <Hall>\n");
  ASSERT_TRUE(Open(t, dir, source));
  const std::string first = ReadFile(log);
  EXPECT_TRUE(first.starts_with("\r\n(Start of new game)\r\nTarve 2.17\r\nOpening file ")) << first;
  EXPECT_TRUE(first.ends_with("Finished loading file.\r\n")) << first;

  ASSERT_TRUE(Open(t, dir, source));
  const std::string both = ReadFile(log);
  EXPECT_EQ(both.substr(first.size())
                .find("\r\n\r\n--------------------------\r\n"
                      "\r\n(Start of new game)\r\nTarve 2.17\r\n"),
            0u)
      << both;
}

}  // namespace
}  // namespace tarve
