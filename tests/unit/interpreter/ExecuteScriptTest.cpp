#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "base/Text.h"
#include "game/ScriptLog.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Functions.h"
#include "interpreter/Substitution.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using Lines = std::vector<std::string>;

class ScriptTest : public ::testing::Test {
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

TEST_F(ScriptTest, PauseFontAndEnterReachTheWindowAsTheyShould) {
  ExecuteScript(game, "pause <250>");
  EXPECT_EQ(host.repaints, 1);
  EXPECT_EQ(host.services, Lines{"sleep 250"});
  game.output.current_default_font_name = "Courier New";
  ExecuteScript(game, "font <Verdana>");
  game.settings.override_all_fonts = true;
  ExecuteScript(game, "font <Verdana>");
  EXPECT_NE(host.styled.find("{font:Verdana}{font:Courier New}"), std::string::npos);
  game.run.input_ended = true;  // enter does not wait once the input has ended
  ExecuteScript(game, "enter <name>");
  EXPECT_EQ(FindVariable(game.variables.strings, "name"), nullptr);
  EXPECT_EQ(host.controls, "-c+");
}

// Long texts count against the statement limit, so a loop over them ends as soon as a loop of
// many statements would (the regression tests show the limit itself).
TEST_F(ScriptTest, BuildingLongTextsCountsAgainstTheStatementLimit) {
  game.statement_limit = 2000;
  SetStringVariable(game, "big", std::string(100 * 1024, 'x'));  // 100 statements' worth
  ExecuteScript(game, "for <i; 1; 1000> setstring <copy; #big#>");
  EXPECT_GE(GetNumericVariable(game, "i"), 15);
  EXPECT_LE(GetNumericVariable(game, "i"), 21);
  EXPECT_EQ(host.log, Lines{"Error: The statement ran more than 2000 statements and calls (loops "
                            "inside loops?) - the rest of it was skipped."});
}

// A tool that bounds the work of a whole game (the fuzzers) sets a total limit: past it every
// statement is skipped with one log line, and nothing is left half-entered.
TEST_F(ScriptTest, TotalStatementLimitSkipsEveryLaterStatement) {
  game.total_statement_limit = 100;
  ExecuteScript(game, "for <i; 1; 150> setvar <n; %i%>");
  EXPECT_LT(GetNumericVariable(game, "n"), 100);
  ExecuteScript(game, "msg <later>");
  EXPECT_EQ(host.output, "");
  EXPECT_EQ(host.log, Lines(2,
                            "Error: The game ran more than 100 statements and calls in all - "
                            "the rest of the statement was skipped."));
  EXPECT_EQ(game.run.script_depth, 0);
  EXPECT_FALSE(game.run.unwinding);
}

TEST_F(ScriptTest, SoundsPicturesAndMailComeFromTheGamesFolderOrTheScript) {
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
TEST_F(ScriptTest, ShellFollowsTheSecuritySettingsAndNeverOpensAProgram) {
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

TEST_F(ScriptTest, FileCopyStaysInsideTheGamesFolder) {
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

// The interpreter/statements transcript shows setstring, setvar, the substitution passes, loops
// and their faults; here what a player cannot see.

TEST_F(ScriptTest, NamesIgnoreCaseAndKeepTheSpellingOfTheLastWrite) {
  SetStringVariable(game, "Name", "Ann");
  SetStringVariable(game, "other", "x");
  SetStringVariable(game, "NAME", "Bob");
  EXPECT_EQ(game.variables.strings.entries[0].name, "NAME");
  // Every write tells the viewer of its table: rows in all (heading included), row, name, value.
  EXPECT_EQ(host.viewer_rows, (Lines{"1 2 1 Name=Ann", "1 3 2 other=x", "1 3 1 NAME=Bob"}));
  // Long names and names beyond ASCII compare ignoring case too.
  SetStringVariable(game, "Player.Score.Display.Name", "long");
  EXPECT_EQ(GetStringVariable(game, "player.score.display.NAME"), "long");
  EXPECT_EQ(FindVariable(game.variables.strings, "player.score.display-name"), nullptr);
  SetStringVariable(game, "Émile", "é");
  EXPECT_EQ(GetStringVariable(game, "éMILE"), "é");
  SetStringVariable(game, "\u212Aelvin", "sign");  // the Kelvin sign lower-cases to k
  EXPECT_EQ(GetStringVariable(game, "kELVIN"), "sign");
  SetNumericVariable(game, "name", -12);  // another variable than the string of that name
  EXPECT_EQ(host.viewer_rows.back(), "2 2 1 name=-12");
  EXPECT_TRUE(host.log.empty());
}

TEST_F(ScriptTest, SetVarCornersAndNumericTextFromElsewhere) {
  for (const auto& [expression, value] : {std::pair{" 42 ", 42},
                                          {"2*3-1", 6},
                                          {"-3--2", -1},
                                          {"1/3", 0},
                                          {"abc", 0},
                                          {"", 0},
                                          {"-32768", -32768},
                                          {"12 apples", 12}}) {
    ExecuteSetVar(game, std::string("n; ") + expression);
    EXPECT_EQ(GetNumericVariable(game, "n"), value) << expression;
  }
  for (const char* parameter :
       {"n; 200*200", "n; -32768-1", "n; 40000", "n; -32768/-1", "n; 1+99999", "n 7"}) {
    ExecuteSetVar(game, parameter);
  }
  EXPECT_EQ(GetNumericVariable(game, "n"), 12);
  EXPECT_EQ(host.log.at(5), "Error: Missing ';' in setvar <n 7> - the variable was not changed.");
  // A value written as text elsewhere (a saved game) is read as a number, held in the range.
  game.variables.numerics.entries = {{"a", "3.5 apples"}, {"b", "99999"}};
  game.variables.numerics.index = {{"a", 0}, {"b", 1}};
  EXPECT_EQ(GetNumericVariable(game, "a"), 4);
  EXPECT_EQ(GetNumericVariable(game, "b"), 32767);
  ExecuteSetVar(game, "n; 1/0");  // the line a division by zero prints is red and bold
  EXPECT_NE(host.styled.find("{colour:255,0,0}{b}Script error encountered"), std::string::npos);
  // A loop fills a string's numeric reference in after the string.
  SetStringVariable(game, "s", "%i%");
  ExecuteScript(game, "for <i; 1; 3> setvar <n; #s#*2>");
  EXPECT_EQ(GetNumericVariable(game, "n"), 6);
}

// A value is cut at a character boundary (the interpreter/statements transcript shows the cut);
// all variables together stop at their limit; overwriting frees what the old value held.
TEST_F(ScriptTest, ValuesAndAllVariablesTogetherStopAtTheirLimits) {
  SetStringVariable(game, "s", "\u00e9t\u00e9");  // two-byte letters, so a cut can fall in one
  ExecuteScript(game, "for <i; 1; 40> setstring <s;#s##s#>");
  EXPECT_TRUE(IsValidUtf8(FindVariable(game.variables.strings, "s")->value));
  host.log.clear();
  ExecuteScript(game, "for <i; 1; 100> setstring <copy %i%;#s#>");
  EXPECT_NE(FindVariable(game.variables.strings, "copy 62"), nullptr);
  EXPECT_EQ(FindVariable(game.variables.strings, "copy 63"), nullptr);
  EXPECT_EQ(host.log.at(0),
            "Error: The game's variables would hold more than 67108864 bytes - variable 'copy 63' "
            "was not set.");
  ExecuteScript(game, "for <i; 1; 100> setstring <copy %i%;short>");
  EXPECT_EQ(GetStringVariable(game, "copy 99"), "short");
  EXPECT_LT(game.variables.bytes, kMaxVariableValueBytes + 4096);
}

// Many references to long variables: the text is cut at its limit, logged, and the game goes on.
TEST_F(ScriptTest, SubstitutedTextThatGrowsPastItsLimitIsCut) {
  SetStringVariable(game, "big", "\u00e9" + std::string(kMaxVariableValueBytes - 3, 'x'));
  std::string text = "#big#";
  for (int i = 0; i < 20; ++i) text += " #big#";
  const std::string result = SubstituteAll(game, text);
  EXPECT_EQ(result.size(), kMaxSubstitutedBytes);
  EXPECT_TRUE(IsValidUtf8(result));
  EXPECT_EQ(host.log, std::vector<std::string>{
                          "Error: The text of <#big# #big# #big# #big# #big# #big# #big# #big# "
                          "#big# #big# ...> grew past 16777216 bytes as its variables were put "
                          "in - the rest of it was cut off."});
  ExecuteScript(game, "msg <still here>");
  EXPECT_EQ(host.output, "still here\r\n");
}

TEST_F(ScriptTest, RandStaysInBoundsGivenEitherWayRound) {
  std::set<std::string> seen;
  for (int i = 0; i < 300; ++i) seen.insert(CallFunction(game, "rand(6; 1)"));
  EXPECT_EQ(seen, (std::set<std::string>{"1", "2", "3", "4", "5", "6"}));
  EXPECT_LE(std::abs(std::stoi(CallFunction(game, "rand(-40000; 40000)"))), 40000);
}

// A game that logs an error on every round of its loops: the window keeps the newest messages,
// whole, and never more than its limit. What the log file gets is in startup/shell-security.tt.
TEST_F(ScriptTest, TheLogWindowKeepsTheNewestMessagesWithinItsLimit) {
  const std::string filler(90, '.');
  for (int i = 1; i <= 100000; ++i) LogScriptError(t.game, "message " + std::to_string(i) + filler);
  const std::string& text = t.game.log.text;
  EXPECT_LE(text.size(), kMaxLogWindowBytes);
  EXPECT_GT(text.size(), kMaxLogWindowBytes / 2);
  EXPECT_TRUE(text.starts_with("message "));
  EXPECT_TRUE(text.ends_with("message 100000" + filler + "\r\n"));
  EXPECT_EQ(t.host.log.size(), 100000u);  // the window's own view was told every message
}

}  // namespace
}  // namespace tarve
