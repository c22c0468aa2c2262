#include <gtest/gtest.h>

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

}  // namespace
}  // namespace tarve
