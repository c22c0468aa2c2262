#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;

class SettingsTest : public ::testing::Test {
 protected:
  // Runs `shell <file>` and tells whether the settings let it through to the desktop.
  bool ShellAllows(const std::string& file) {
    const std::size_t opened = host.services.size();
    ExecuteScript(game, "shell <" + file + ">");
    return host.services.size() > opened;
  }
  TempDir dir;
  TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
  MemorySettingsStore store;
};

TEST_F(SettingsTest, TerminalPlayerLeavesFirstRunSetUpToTheDesktop) {
  EXPECT_FALSE(LoadSettings(game, store));
  EXPECT_EQ(store.Size(), 0u);  // not even the marker: the desktop program still sets up
  EXPECT_TRUE(host.messages.empty());
}

TEST_F(SettingsTest, WithoutSecurityKeysProgramTypesAreRefusedAndOthersAllowed) {
  LoadSettings(game, store);
  const std::vector<std::string> list = {"EXE", "COM", "DOC", "DLL"};
  EXPECT_EQ(game.settings.custom_security, list);
  EXPECT_FALSE(ShellAllows("letter.doc"));
  EXPECT_FALSE(ShellAllows("Library.Dll"));
  EXPECT_TRUE(ShellAllows("readme.txt"));
  EXPECT_EQ(GetNumericVariable(game, "tarve.shellsuccess"), 1);
}

TEST_F(SettingsTest, EmptyAllowListUnderCustomSecurityRefusesEveryFile) {
  store.Write("Security", "NumberCustomSecurity", "0");
  store.Write("Security", "SecurityType", "3");
  store.Write("Security", "CustomSecurityIsDisallow", "No");
  store.Write("Security", "CustomSecurity1", "TXT");  // beyond the count: not on the list
  LoadSettings(game, store);
  EXPECT_TRUE(game.settings.custom_security.empty());
  EXPECT_FALSE(ShellAllows("readme.txt"));
  EXPECT_FALSE(ShellAllows("picture.png"));
  EXPECT_FALSE(ShellAllows("noextension"));
}

TEST_F(SettingsTest, GarbageValuesReadAsTheNumberAndTruthRulesSay) {
  store.Write("Options", "DefaultFontSize", "abc");
  store.Write("Options", "DetailedLook", "YES please");  // only "yes" itself is true
  store.Write("Options", "AutoInstall", "yEs");
  store.Write("Options", "SpecialMsgBox", "");
  store.Write("Options", "DefaultFontBold", "1");
  store.Write("Options", "DefaultFontName", "");
  store.Write("Security", "SecurityType", "2.5");  // rounds half to even: 2
  store.Write("Security", "NumberCustomSecurity", "-5");
  Settings s = ReadSettings(store);
  EXPECT_EQ(s.default_font_size, 0.0f);
  EXPECT_FALSE(s.detailed_look);
  EXPECT_TRUE(s.auto_install);
  EXPECT_FALSE(s.special_msg_box);
  EXPECT_FALSE(s.default_font_bold);
  EXPECT_EQ(s.default_font_name, "");
  EXPECT_EQ(s.security_type, 2);
  EXPECT_TRUE(s.custom_security.empty());

  // A level that is no number, or too large to be one, is no defined level: nothing opens.
  for (const char* level : {"abc", "99999", "1e40", "-32769"}) {
    store.Write("Security", "SecurityType", level);
    EXPECT_EQ(ReadSettings(store).security_type, 0) << level;
  }
  store.Write("Options", "DefaultFontSize", "1e39");
  EXPECT_EQ(ReadSettings(store).default_font_size, 0.0f);
  store.Write("Options", "DefaultFontSize", " 12.5pt");
  EXPECT_EQ(ReadSettings(store).default_font_size, 12.5f);

  // A damaged count neither hangs nor takes the default list; missing entries read empty.
  store.Write("Security", "CustomSecurity1", "doc");
  store.Write("Security", "NumberCustomSecurity", "999999");
  const std::vector<std::string> capped = ReadSettings(store).custom_security;
  ASSERT_EQ(capped.size(), static_cast<std::size_t>(kMaxListEntries));
  EXPECT_EQ(capped.front(), "DOC");
  store.Write("Security", "NumberCustomSecurity", "3");
  store.Write("Security", "CustomSecurity3", "ÿes");
  const std::vector<std::string> list = {"DOC", "", "ŸES"};
  EXPECT_EQ(ReadSettings(store).custom_security, list);
}

TEST_F(SettingsTest, SavedSettingsReadBackAndAShorterListLeavesNoStaleEntries) {
  Settings s;
  s.log_errors = true;
  s.log_file = "/home/p/tarvelog.log";
  s.detailed_look = false;
  s.default_font_name = "Verdana";
  s.default_font_size = 10.5f;
  s.override_effects = true;
  s.label_background_colour = "000000";
  s.security_type = 1;
  s.custom_security_is_disallow = false;
  s.custom_security = {"TXT", "PNG", "WAV"};
  ASSERT_TRUE(SaveSettings(s, store));
  EXPECT_EQ(store.Read("Options", "LogErrors"), "Yes");
  EXPECT_EQ(store.Read("Options", "OutputFile"), "No");
  EXPECT_EQ(store.Read("Options", "DefaultFontSize"), "10.5");
  EXPECT_EQ(store.Read("Security", "SecurityType"), "1");
  EXPECT_EQ(store.Read("Security", "NumberCustomSecurity"), "3");
  EXPECT_EQ(store.Read("Security", "CustomSecurity3"), "WAV");

  Settings back = ReadSettings(store);
  EXPECT_TRUE(back.log_errors);
  EXPECT_EQ(back.log_file, s.log_file);
  EXPECT_FALSE(back.output_file);
  EXPECT_FALSE(back.detailed_look);
  EXPECT_EQ(back.default_font_name, "Verdana");
  EXPECT_EQ(back.default_font_size, 10.5f);
  EXPECT_TRUE(back.override_effects);
  EXPECT_EQ(back.label_background_colour, "000000");
  EXPECT_EQ(back.security_type, 1);
  EXPECT_FALSE(back.custom_security_is_disallow);
  EXPECT_EQ(back.custom_security, s.custom_security);

  // An emptied list is saved as such: never again the default four types.
  s.custom_security = {"TXT"};
  ASSERT_TRUE(SaveSettings(s, store));
  EXPECT_FALSE(store.Read("Security", "CustomSecurity2"));
  EXPECT_FALSE(store.Read("Security", "CustomSecurity3"));
  s.custom_security.clear();
  ASSERT_TRUE(SaveSettings(s, store));
  EXPECT_TRUE(ReadSettings(store).custom_security.empty());
}

TEST_F(SettingsTest, InstalledGamesSurviveDamagedCountsAndMissingKeys) {
  EXPECT_TRUE(ReadInstalledGames(store).empty());  // no "Games" section at all

  store.Write("Games", "Name1", "Manor");
  store.Write("Games", "File1", "/games/manor.gwl");
  store.Write("Games", "File3", "/games/cave.cgw");  // no name: listed by its path
  store.Write("Games", "Name4", "Lost");             // no file: skipped
  for (const char* count : {"-5", "abc", "0", ""}) {
    store.Write("Games", "NumInstalled", count);
    EXPECT_TRUE(ReadInstalledGames(store).empty()) << count;
  }
  for (const char* count : {"999999", "4", "4.4"}) {
    store.Write("Games", "NumInstalled", count);
    std::vector<InstalledGame> games = ReadInstalledGames(store);
    ASSERT_EQ(games.size(), 2u) << count;
    EXPECT_EQ(games[0].name, "Manor");
    EXPECT_EQ(games[0].file, "/games/manor.gwl");
    EXPECT_EQ(games[1].name, "/games/cave.cgw");
  }

  // Writing the list back renumbers it and drops the keys of entries beyond it.
  ASSERT_TRUE(WriteInstalledGames(store, {{"Cave", "/games/cave.cgw"}}));
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "1");
  EXPECT_EQ(store.Read("Games", "Name1"), "Cave");
  EXPECT_FALSE(store.Read("Games", "File3"));
  EXPECT_FALSE(store.Read("Games", "Name4"));
}

TEST_F(SettingsTest, GameTitleComesFromTheFirstDefineGameField) {
  SetStringVariable(game, "edition", "Gold");
  const std::string plain = dir.Write("plain.gwl",
                                      "' The Manor\r\n"
                                      "define room <Hall>\r\nend define\r\n"
                                      "  define game <The Manor (#edition#)>\r\n"
                                      "define game <Second>\r\nend define\r\n");
  EXPECT_EQ(GetGameTitle(game, plain), "The Manor (Gold)");

  // Read field by field: a comma ends a field, so a title with a comma is cut short (and the
  // cut parameter is logged), while a field in double quotes keeps its commas.
  const std::string comma = dir.Write("comma.gwl", "define game <Manor, the>\nend define\n");
  EXPECT_EQ(GetGameTitle(game, comma), "");
  EXPECT_FALSE(host.log.empty());
  const std::string quoted =
      dir.Write("quoted.gwl", "\"define game <Manor, the>\" trailing, words\nend define\n");
  EXPECT_EQ(GetGameTitle(game, quoted), "Manor, the");
  const std::string second_field = dir.Write("field.gwl", "x, define game <Hidden>\n");
  EXPECT_EQ(GetGameTitle(game, second_field), "Hidden");

  EXPECT_EQ(GetGameTitle(game, dir.Write("notitle.gwl", "define room <Hall>\nend define\n")),
            "__NOTITLE");
  EXPECT_EQ(GetGameTitle(game, dir.Write("empty.gwl", "")), "__NOTITLE");
  EXPECT_EQ(GetGameTitle(game, dir.path() + "/missing.gwl"), "__CANTOPEN");
  EXPECT_EQ(GetGameTitle(game, dir.path()), "__CANTOPEN");
  // A compiled game is listed by its path and never opened.
  EXPECT_EQ(GetGameTitle(game, dir.path() + "/missing.cgw"), dir.path() + "/missing.cgw");
}

TEST_F(SettingsTest, InstalledGameIsRecognisedByTheFileItNames) {
  namespace fs = std::filesystem;
  const std::string manor = dir.Write("games/manor.gwl", "define game <Manor>\nend define\n");
  dir.Write("games/cave.gwl", "define game <Cave>\nend define\n");
  store.Write("Games", "NumInstalled", "1");
  store.Write("Games", "Name1", "Manor");
  store.Write("Games", "File1", manor);

  EXPECT_TRUE(IsInstalledGame(store, manor));
  EXPECT_TRUE(IsInstalledGame(store, dir.path() + "/games/../games/./manor.gwl"));
  EXPECT_FALSE(IsInstalledGame(store, dir.path() + "/games/cave.gwl"));
  EXPECT_FALSE(IsInstalledGame(store, dir.path() + "/games/MANOR.gwl"));  // names keep case

  const fs::path link = fs::path(dir.path()) / "link.gwl";
  fs::create_symlink(manor, link);
  EXPECT_TRUE(IsInstalledGame(store, link.string()));

  // A path relative to the current folder names the same file as its absolute form.
  const fs::path before = fs::current_path();
  fs::current_path(dir.path());
  EXPECT_TRUE(IsInstalledGame(store, "games/manor.gwl"));
  fs::current_path(before);
}

}  // namespace
}  // namespace tarve
