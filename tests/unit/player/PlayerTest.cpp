#include <gtest/gtest.h>

#include "player/Player.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

constexpr const char* kCellar =
    "define game <Cellar>\n"
    "  gwl-version <217>\n"
    "  start <Cellar>\n"
    "end define\n"
    "define room <Cellar>\n"
    "  look <Damp walls.>\n"
    "end define\n";

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

// Saved games by their extension and quoted names are in the startup transcripts.
TEST(PlayerStart, AGameNamedOpensWithoutTheSplashAndNoneOpensTheLauncher) {
  {
    CellarPlayer c;
    EXPECT_EQ(c.t.player.Start(c.path, c.start), Player::Started::kGame);
    EXPECT_TRUE(c.t.player.game_open());
    EXPECT_TRUE(c.t.player.opened_from_command_line());
    EXPECT_EQ(c.t.host.windows, Lines{"splash closed"});  // no splash with a file named
    EXPECT_EQ(c.t.host.caption, "Tarve 2.17 - \"Cellar\"");
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

}  // namespace
}  // namespace tarve
