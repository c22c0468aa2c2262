// What a game, a planted link or a file that is no file cannot make the player do: write outside
// the game's folder, write through a link or a stray file beside a save, lose a save's mode or
// link, hang on a FIFO, or lose the place to save to.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "player/Player.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

namespace fs = std::filesystem;

constexpr const char* kGame =
    "define game <Shed>\n"
    "  start <shed>\n"
    "end define\n"
    "define room <shed>\n"
    "end define\n";

class FileSafetyTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(t.player.OpenGame(dir.Write("game/shed.gwl", kGame))); }

  test::TempDir dir;
  test::TempDir outside;
  test::TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
  const fs::path folder = dir.path() + "/game";
};

TEST_F(FileSafetyTest, FileCopyNeverWritesThroughALinkOrAHardLink) {
  dir.Write("game/in.txt", "hello");
  const std::string victim = outside.Write("victim.txt", "precious");
  fs::create_symlink(outside.path() + "/created.txt", folder / "dangling.txt");
  fs::create_symlink(victim, folder / "existing.txt");
  fs::create_hard_link(victim, folder / "hard.txt");
  for (const char* destination : {"dangling.txt", "existing.txt", "hard.txt"}) {
    ExecuteScript(game, std::string("advfunc 0001 <in.txt; ") + destination + ">");
    EXPECT_EQ(GetNumericVariable(game, "!tarve.int.filecopyerror"), 1) << destination;
    EXPECT_EQ(host.log.back(), std::string("Error: Refused to copy in.txt to ") + destination +
                                   ": files may only be copied inside the game's folder.");
  }
  EXPECT_FALSE(fs::exists(outside.path() + "/created.txt"));
  EXPECT_EQ(test::ReadFile(victim), "precious");
  ExecuteScript(game, "advfunc 0001 <existing.txt; copy.txt>");  // nor read through one
  EXPECT_FALSE(fs::exists(folder / "copy.txt"));
}

TEST_F(FileSafetyTest, SavingKeepsModeAndLinkAndIgnoresPlantedFiles) {
  // A save reached through a link is written where the link leads, with the old mode kept.
  const std::string saves = dir.path() + "/saves/";
  const std::string real = dir.Write("saves/real.tsg", "old");
  const fs::perms mode = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(real, mode);
  fs::create_symlink("real.tsg", saves + "linked.tsg");
  // Files planted under the names a save might use for its temporary file are never used.
  const std::string victim = outside.Write("victim.txt", "precious");
  fs::create_symlink(victim, saves + "real.tsg.tmp~");
  host.file_dialog_answers = {saves + "linked.tsg"};
  t.player.MenuSave();
  EXPECT_TRUE(fs::is_symlink(saves + "linked.tsg"));
  EXPECT_EQ(test::ReadFile(real).rfind("TARVE200.1\r\n", 0), 0u);
  EXPECT_EQ(fs::status(real).permissions(), mode);
  EXPECT_EQ(test::ReadFile(victim), "precious");
  // The real file, the link and the planted link: no temporary file left behind.
  EXPECT_EQ(std::distance(fs::directory_iterator(saves), fs::directory_iterator()), 3);
}

// A save whose folder went away asks for another file at once, and goes on with that one.
TEST_F(FileSafetyTest, AFailedSaveAsksForAnotherFile) {
  host.file_dialog_answers = {dir.path() + "/game/first.tsg", dir.path() + "/second.tsg"};
  t.player.MenuSave();
  fs::remove_all(folder);
  t.player.MenuSave();
  EXPECT_EQ(host.messages.back(),
            "[Error] Unable to save the game to " + folder.string() + "/first.tsg");
  EXPECT_TRUE(fs::exists(dir.path() + "/second.tsg"));
  t.player.MenuSave();
  EXPECT_EQ(host.file_dialogs, (std::vector<std::string>{"save", "save"}));
}

TEST_F(FileSafetyTest, FifosAndDevicesAreRefusedWithoutWaiting) {
  const std::string fifo = folder / "pipe.gwl";
  const std::string saved = folder / "pipe.tsg";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600) | mkfifo(saved.c_str(), 0600), 0);
  dir.Write("game/lib.gwl", "!include <pipe.gwl>\n" + std::string(kGame));

  EXPECT_FALSE(t.player.LoadSavedGame(saved));
  EXPECT_FALSE(t.player.LoadSavedGame("/dev/null"));
  EXPECT_EQ(host.messages.back(), "[Error] Unable to open /dev/null");
  EXPECT_EQ(game.world.current_room, "shed");  // the game in progress goes on
  EXPECT_FALSE(t.player.OpenGame(fifo));
  EXPECT_EQ(host.messages.back(), "[Error] Unable to open " + fifo);
  EXPECT_FALSE(t.player.OpenGame(dir.path() + "/game/lib.gwl"));
  EXPECT_NE(std::find(host.log.begin(), host.log.end(), "ERROR: Library not found."),
            host.log.end());

  // The copy of the game's text is refused too when nobody reads the FIFO it would go to.
  game.settings.output_file = true;
  game.settings.out_file = saved;
  ASSERT_TRUE(t.player.OpenGame(folder / "shed.gwl"));
  EXPECT_NE(std::find(host.log.begin(), host.log.end(),
                      "Warning: Unable to open the output file " + saved +
                          " - the game's text is not copied to it."),
            host.log.end());
}

}  // namespace
}  // namespace tarve
