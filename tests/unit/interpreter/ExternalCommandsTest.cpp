#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;

class ExternalCommandsTest : public ::testing::Test {
 protected:
  int16_t Numeric(std::string_view name) { return GetNumericVariable(game, name); }

  TempDir dir;
  TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
};

TEST_F(ExternalCommandsTest, SoundsAndPicturesComeFromTheGamesFolder) {
  dir.Write("sounds/Door.WAV", "");
  ExecuteScript(game, "playwav <sounds\\door>");
  ExecuteScript(game, "playwav <bell.ogg;sync>");
  ExecuteScript(game, "playmidi <theme.mid>");
  ExecuteScript(game, "playmidi <>");
  ExecuteScript(game, "show <maps\\hall.png>");
  const std::string folder = dir.path() + "/";
  const std::vector<std::string> services = {
      "wave " + folder + "sounds/Door.WAV async", "wave " + folder + "bell.ogg sync",
      "midi " + folder + "theme.mid", "midi stop", "picture " + folder + "maps/hall.png"};
  EXPECT_EQ(host.services, services);
  EXPECT_EQ(host.repaints, 1);  // before the sound the script waits for
  EXPECT_TRUE(host.log.empty());
}

TEST_F(ExternalCommandsTest, ShellFollowsTheSecuritySettings) {
  const std::string program = game.program_folder + "/";
  game.settings.security_type = 1;
  ExecuteScript(game, "shell <readme.txt>");
  EXPECT_EQ(Numeric("tarve.shellsuccess"), 0);
  EXPECT_EQ(host.log.back(),
            "Error shelling readme.txt: disallowed by user's Tarve security settings");

  // The custom list refuses the types on it (EXE, COM, DOC, DLL by default)...
  game.settings.security_type = 3;
  ExecuteScript(game, "shell <readme.txt; notactive>");
  EXPECT_EQ(Numeric("tarve.shellsuccess"), 1);
  ExecuteScript(game, "shell <letter.docx>");  // the type is cut to three characters
  EXPECT_EQ(Numeric("tarve.shellsuccess"), 0);
  // ...or, as an allow list, allows only them.
  game.settings.custom_security_is_disallow = false;
  ExecuteScript(game, "shell <letter.doc>");
  EXPECT_EQ(Numeric("tarve.shellsuccess"), 1);
  ExecuteScript(game, "shell <readme.txt>");
  EXPECT_EQ(Numeric("tarve.shellsuccess"), 0);
  // An installed game may open anything when the player allows it.
  game.settings.zero_security_installed_games = true;
  game.run.installed_game = true;
  ExecuteScript(game, "shell <readme.txt>");
  EXPECT_EQ(Numeric("tarve.shellsuccess"), 1);

  const std::vector<std::string> opened = {"open " + program + "readme.txt minimised",
                                           "open " + program + "letter.doc",
                                           "open " + program + "readme.txt"};
  EXPECT_EQ(host.services, opened);
}

TEST_F(ExternalCommandsTest, ShellReportsWhatThePlatformAnswers) {
  game.settings.security_type = 2;
  const struct {
    PlatformServices::OpenResult result;
    int code;
    const char* message;
  } cases[] = {
      {PlatformServices::OpenResult::kNotFound, 2, "Error shelling a.txt: file/path not found"},
      {PlatformServices::OpenResult::kNoAssociation, 3,
       "Error shelling a.txt: file association does not exist or is incomplete"},
      {PlatformServices::OpenResult::kOutOfMemory, 4, "Error shelling a.txt: out of memory"},
  };
  for (const auto& c : cases) {
    host.open_result = c.result;
    ExecuteScript(game, "shell <a.txt>");
    EXPECT_EQ(Numeric("tarve.shellsuccess"), c.code);
    EXPECT_EQ(host.log.back(), c.message);
  }
}

TEST_F(ExternalCommandsTest, ShellNeverOpensAProgramWhateverTheSettings) {
  game.settings.security_type = 2;
  game.settings.zero_security_installed_games = true;
  game.run.installed_game = true;
  const std::string notes = dir.Write("program/notes.txt", "#!/bin/sh\n");
  ASSERT_EQ(chmod(notes.c_str(), 0755), 0);
  for (const char* file : {"notes.txt", "install.sh", "Game.AppImage", "tool.PY", "app.desktop",
                           "setup.exe", "lib.jar", "x.run", "x.bin", "x.pl"}) {
    SetNumericVariable(game, "tarve.shellsuccess", 7);
    ExecuteScript(game, std::string("shell <") + file + ">");
    EXPECT_EQ(Numeric("tarve.shellsuccess"), 0) << file;
    EXPECT_EQ(host.log.back(), std::string("Error shelling ") + file +
                                   ": disallowed by user's Tarve security settings");
  }
  EXPECT_TRUE(host.services.empty());
}

TEST_F(ExternalCommandsTest, FileCopyStaysInsideTheGamesFolder) {
  dir.Write("saves/start.dat", "hello");
  ExecuteScript(game, "advfunc 0001 <saves\\start.dat; saves/copy.dat>");
  EXPECT_EQ(Numeric("!tarve.int.filecopyerror"), 0);
  EXPECT_EQ(test::ReadFile(dir.path() + "/saves/copy.dat"), "hello");
  EXPECT_TRUE(host.log.empty());

  const std::filesystem::path outside = std::filesystem::path(dir.path()).parent_path();
  std::filesystem::create_directory_symlink(outside, std::filesystem::path(dir.path()) / "link");
  for (const std::string& parameter :
       {std::string("saves/start.dat; ../escaped.dat"), std::string("../../etc/passwd; x.dat"),
        "saves/start.dat; " + outside.string() + "/escaped.dat",
        std::string("saves/start.dat; link/escaped.dat")}) {
    SetNumericVariable(game, "!tarve.int.filecopyerror", 0);
    ExecuteScript(game, "advfunc 0001 <" + parameter + ">");
    EXPECT_EQ(Numeric("!tarve.int.filecopyerror"), 1) << parameter;
    EXPECT_NE(host.log.back().find("files may only be copied inside the game's folder"),
              std::string::npos);
  }
  EXPECT_FALSE(std::filesystem::exists(outside / "escaped.dat"));

  ExecuteScript(game, "advfunc 0001 <missing.dat; copy.dat>");
  EXPECT_EQ(Numeric("!tarve.int.filecopyerror"), 1);
  EXPECT_EQ(host.log.back().rfind("Error: Unable to copy missing.dat to copy.dat: ", 0), 0u);
  ExecuteScript(game, "advfunc 0001 <no destination>");
  EXPECT_EQ(Numeric("!tarve.int.filecopyerror"), 1);
}

TEST_F(ExternalCommandsTest, MailAndUnknownExtendedFunctions) {
  SetStringVariable(game, "who", "ann@example.org");
  ExecuteScript(game, "mailto <#who#>");
  ExecuteScript(game, "advfunc 0002 <#who#>");
  ExecuteScript(game, "advfunc 0003 <#who#>");
  ExecuteScript(game, "advfunc 12");
  const std::vector<std::string> opened = {"open mailto:ann@example.org", "open ann@example.org"};
  EXPECT_EQ(host.services, opened);
  EXPECT_TRUE(host.log.empty());
}

}  // namespace
}  // namespace tarve
