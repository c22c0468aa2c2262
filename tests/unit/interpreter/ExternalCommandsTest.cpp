#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using Lines = std::vector<std::string>;

class ExternalCommandsTest : public ::testing::Test {
 protected:
  int16_t Run(const std::string& statement, std::string_view variable = "tarve.shellsuccess") {
    ExecuteScript(game, statement);
    return GetNumericVariable(game, variable);
  }

  test::TempDir dir;
  test::TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
};

TEST_F(ExternalCommandsTest, SoundsPicturesAndMailComeFromTheGamesFolderOrTheScript) {
  dir.Write("sounds/Door.WAV", "");
  for (const char* statement :
       {"playwav <sounds\\door>", "playwav <bell.ogg;sync>", "playmidi <theme.mid>", "playmidi <>",
        "show <maps\\hall.png>", "mailto <ann@x.org>", "advfunc 0002 <ann@x.org>", "advfunc 12"}) {
    ExecuteScript(game, statement);
  }
  const std::string folder = dir.path() + "/";
  EXPECT_EQ(
      host.services,
      (Lines{"wave " + folder + "sounds/Door.WAV async", "wave " + folder + "bell.ogg sync",
             "midi " + folder + "theme.mid", "midi stop", "picture " + folder + "maps/hall.png",
             "open mailto:ann@x.org", "open ann@x.org"}));
  EXPECT_EQ(host.repaints, 1);  // before the sound the script waits for
  EXPECT_TRUE(host.log.empty());
}

// The interpreter reads the custom list as a refusal list in the startup/shell-security
// transcript, with "file/path not found" and "no association"; here the other settings.
TEST_F(ExternalCommandsTest, ShellFollowsTheSecuritySettingsAndNeverOpensAProgram) {
  const std::string program = game.program_folder + "/";
  game.settings.security_type = 1;
  game.settings.zero_security_installed_games = true;  // only an installed game opens anything
  EXPECT_EQ(Run("shell <readme.txt>"), 0);
  EXPECT_EQ(host.log.back(),
            "Error shelling readme.txt: disallowed by user's Tarve security settings");
  game.run.installed_game = true;
  EXPECT_EQ(Run("shell <readme.txt>"), 1);
  game.run.installed_game = false;
  game.settings.security_type = 3;  // the list (EXE, COM, DOC, DLL) as an allow list
  game.settings.custom_security_is_disallow = false;
  EXPECT_EQ(Run("shell <letter.docx; notactive>"), 1);  // the type is cut to three characters
  EXPECT_EQ(Run("shell <readme.txt>"), 0);
  game.settings.security_type = 2;  // anything but a program
  host.open_result = PlatformServices::OpenResult::kOutOfMemory;
  EXPECT_EQ(Run("shell <a.txt>"), 4);
  EXPECT_EQ(host.log.back(), "Error shelling a.txt: out of memory");
  EXPECT_EQ(host.services,
            (Lines{"open " + program + "readme.txt", "open " + program + "letter.docx minimised",
                   "open " + program + "a.txt"}));
  // Never a program, whatever the settings allow.
  host.services.clear();
  const std::string notes = dir.Write("program/notes.txt", "#!/bin/sh\n");
  ASSERT_EQ(chmod(notes.c_str(), 0755), 0);
  for (const char* file : {"notes.txt", "install.sh", "Game.AppImage", "tool.PY", "app.desktop",
                           "setup.exe", "lib.jar", "x.run", "x.bin", "x.pl"})
    EXPECT_EQ(Run(std::string("shell <") + file + ">"), 0) << file;
  EXPECT_TRUE(host.services.empty());
}

TEST_F(ExternalCommandsTest, FileCopyStaysInsideTheGamesFolder) {
  const std::string error = "!tarve.int.filecopyerror";
  dir.Write("saves/start.dat", "hello");
  EXPECT_EQ(Run("advfunc 0001 <saves\\start.dat; saves/copy.dat>", error), 0);
  EXPECT_EQ(test::ReadFile(dir.path() + "/saves/copy.dat"), "hello");
  EXPECT_TRUE(host.log.empty());

  const std::filesystem::path outside = std::filesystem::path(dir.path()).parent_path();
  std::filesystem::create_directory_symlink(outside, std::filesystem::path(dir.path()) / "link");
  for (const std::string& parameter :
       Lines{"saves/start.dat; ../escaped.dat", "../../etc/passwd; x.dat",
             "saves/start.dat; " + outside.string() + "/escaped.dat",
             "saves/start.dat; link/escaped.dat"}) {
    SetNumericVariable(game, error, 0);
    EXPECT_EQ(Run("advfunc 0001 <" + parameter + ">", error), 1) << parameter;
    EXPECT_NE(host.log.back().find("files may only be copied inside the game's folder"),
              std::string::npos);
  }
  EXPECT_FALSE(std::filesystem::exists(outside / "escaped.dat"));

  EXPECT_EQ(Run("advfunc 0001 <missing.dat; copy.dat>", error), 1);
  EXPECT_EQ(host.log.back().rfind("Error: Unable to copy missing.dat to copy.dat: ", 0), 0u);
  SetNumericVariable(game, error, 0);
  EXPECT_EQ(Run("advfunc 0001 <no destination>", error), 1);
}

}  // namespace
}  // namespace tarve
