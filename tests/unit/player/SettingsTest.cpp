#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "player/InstalledGamesList.h"
#include "player/OptionsForm.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using Strings = std::vector<std::string>;

class SettingsTest : public ::testing::Test {
 protected:
  bool ShellAllows(const std::string& file) {
    const std::size_t opened = t.host.services.size();
    ExecuteScript(t.game, "shell <" + file + ">");
    return t.host.services.size() > opened;
  }
  test::TempDir dir;
  test::TestGame t{dir};
  MemorySettingsStore store;
};

// A custom list that refuses is in startup/shell-security.tt.
TEST_F(SettingsTest, WithoutKeysProgramTypesAreRefusedAndAnEmptyAllowListRefusesAll) {
  EXPECT_FALSE(LoadSettings(t.game, store));  // the terminal leaves first-run set-up alone
  EXPECT_EQ(store.Size(), 0u);
  EXPECT_EQ(t.game.settings.custom_security, (Strings{"EXE", "COM", "DOC", "DLL"}));
  EXPECT_FALSE(ShellAllows("Library.Dll"));
  EXPECT_TRUE(ShellAllows("readme.txt"));

  store.Write("Security", "NumberCustomSecurity", "0");
  store.Write("Security", "CustomSecurityIsDisallow", "No");
  store.Write("Security", "CustomSecurity1", "TXT");  // beyond the count: not on the list
  LoadSettings(t.game, store);
  EXPECT_TRUE(t.game.settings.custom_security.empty());
  EXPECT_FALSE(ShellAllows("readme.txt"));
  EXPECT_FALSE(ShellAllows("noextension"));
}

TEST_F(SettingsTest, GarbageValuesReadAsTheNumberAndTruthRulesSay) {
  store.Write("Options", "DetailedLook", "YES please");  // only "yes" itself, in any case, is true
  store.Write("Options", "SpecialMsgBox", "");
  store.Write("Security", "NumberCustomSecurity", "-5");
  Settings s = ReadSettings(store);
  EXPECT_FALSE(s.detailed_look);
  EXPECT_FALSE(s.special_msg_box);
  EXPECT_TRUE(s.custom_security.empty());
  // A level that is no number, or too large to be one, is no defined level: nothing opens.
  store.Write("Security", "SecurityType", "99999");
  store.Write("Options", "DefaultFontSize", "1e39");
  EXPECT_EQ(ReadSettings(store).security_type, 0);
  EXPECT_EQ(ReadSettings(store).default_font_size, 0.0f);
  store.Write("Security", "SecurityType", "2.5");  // rounded half to even
  store.Write("Options", "DefaultFontSize", " 12.5pt");
  EXPECT_EQ(ReadSettings(store).security_type, 2);
  EXPECT_EQ(ReadSettings(store).default_font_size, 12.5f);
  // A damaged count neither hangs nor takes the default list; missing entries read empty.
  store.Write("Security", "CustomSecurity1", "doc");
  store.Write("Security", "NumberCustomSecurity", "999999");
  EXPECT_EQ(ReadSettings(store).custom_security.size(), static_cast<std::size_t>(kMaxListEntries));
  store.Write("Security", "NumberCustomSecurity", "3");
  store.Write("Security", "CustomSecurity3", "ÿes");
  EXPECT_EQ(ReadSettings(store).custom_security, (Strings{"DOC", "", "ŸES"}));
}

TEST_F(SettingsTest, InstalledGamesSurviveDamagedCountsAndMissingKeys) {
  EXPECT_TRUE(ReadInstalledGames(store).empty());  // no "Games" section at all
  store.Write("Games", "Name1", "Manor");
  store.Write("Games", "File1", "/games/manor.gwl");
  store.Write("Games", "File3", "/games/cave.cgw");  // no name: listed by its path
  store.Write("Games", "Name4", "Lost");             // no file: skipped
  for (const auto& [count, listed] : std::vector<std::pair<const char*, std::size_t>>{
           {"-5", 0}, {"abc", 0}, {"", 0}, {"999999", 2}, {"4.4", 2}}) {
    store.Write("Games", "NumInstalled", count);
    const std::vector<InstalledGame> games = ReadInstalledGames(store);
    ASSERT_EQ(games.size(), listed) << count;
    EXPECT_TRUE(listed == 0 || games[1].name == "/games/cave.cgw") << count;
  }
  // The launcher adds after the stored count, over no entry (refusals: the launcher's tests).
  InstalledGamesList list(store);
  ASSERT_EQ(list.size(), 2);
  EXPECT_TRUE(list.Add(t.game, dir.Write("manor.gwl", "define game <Manor>\nend define\n")).added);
  EXPECT_EQ(store.Read("Games", "Name5"), "Manor");
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "5");
  // Writing the list back renumbers it and drops the keys of entries beyond it.
  ASSERT_TRUE(WriteInstalledGames(store, {{"Cave", "/games/cave.cgw"}}));
  EXPECT_EQ(store.Read("Games", "Name1"), "Cave");
  EXPECT_FALSE(store.Read("Games", "File3"));
  EXPECT_FALSE(store.Read("Games", "Name5"));
}

TEST_F(SettingsTest, GameTitleComesFromTheFirstDefineGameField) {
  SetStringVariable(t.game, "edition", "Gold");
  // Read field by field: a comma ends a field (the cut title is logged), while a field in
  // double quotes keeps its commas; a compiled game is listed by its path and never opened.
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"' x\r\ndefine room <Hall>\r\n  define game <The Manor (#edition#)>\r\ndefine game <B>\r\n",
       "The Manor (Gold)"},
      {"define game <Manor, the>\nend define\n", ""},
      {"\"define game <Manor, the>\" trailing, words\n", "Manor, the"},
      {"x, define game <Hidden>\n", "Hidden"},
      {"define room <Hall>\nend define\n", "__NOTITLE"},
      {"", "__NOTITLE"}};
  for (const auto& [source, title] : cases) {
    EXPECT_EQ(GetGameTitle(t.game, dir.Write("game.gwl", source)), title) << source;
  }
  EXPECT_FALSE(t.host.log.empty());
  EXPECT_EQ(GetGameTitle(t.game, dir.path() + "/missing.gwl"), "__CANTOPEN");
  EXPECT_EQ(GetGameTitle(t.game, dir.path()), "__CANTOPEN");
  EXPECT_EQ(GetGameTitle(t.game, dir.path() + "/missing.cgw"), dir.path() + "/missing.cgw");
}

// An installed game picked from the list opens as one in startup/installed-games.tt.
TEST_F(SettingsTest, InstalledGameIsRecognisedByAnotherSpellingOrALinkAndInItsOwnCase) {
  namespace fs = std::filesystem;
  const std::string manor = dir.Write("manor.gwl", "define game <Manor>\nend define\n");
  fs::current_path(dir.path());  // listed relative to the folder the player started in
  const std::string relative = "../" + fs::path(dir.path()).filename().string() + "/./manor.gwl";
  ASSERT_TRUE(WriteInstalledGames(store, {{"Manor", relative}}));
  fs::create_symlink(manor, dir.path() + "/link.gwl");
  EXPECT_TRUE(IsInstalledGame(store, manor));
  EXPECT_TRUE(IsInstalledGame(store, dir.path() + "/link.gwl"));
  EXPECT_FALSE(IsInstalledGame(store, dir.path() + "/MANOR.gwl"));
}

// The window-free models behind the launcher and the options window where the windows' own tests
// cannot reach: the data folder and what the form keeps.

TEST(UserDataFolder, FollowsAnAbsoluteXdgDataHomeElseTheHomeFolder) {
  EXPECT_EQ(UserDataFolder("/data", "/home/ann"), "/data/Tarve");
  EXPECT_EQ(UserDataFolder("relative", "/home/ann"), "/home/ann/.local/share/Tarve");
  EXPECT_EQ(UserDataFolder(nullptr, nullptr), "");
}

TEST(OptionsForm, ConfirmWritesEveryKeyAndKeepsWhatIsNoColourOrNoLevel) {
  MemorySettingsStore store;
  Settings settings;
  settings.custom_security = {"TXT", "PNG", "WAV"};  // a longer list leaves no entries behind
  ASSERT_TRUE(SaveSettings(settings, store));
  settings.security_type = 0;  // read from a damaged store
  OptionsForm form(settings, "/unused");
  form.values.label_foreground_colour = "a0b1c2";
  form.values.label_background_colour = "12345";
  form.values.custom_security = {"TXT"};
  ASSERT_TRUE(form.Confirm(settings, store));
  EXPECT_EQ(settings.label_foreground_colour, "A0B1C2");
  EXPECT_EQ(store.Read("Options", "LabelBackgroundColour"), "600070");
  EXPECT_EQ(store.Read("Security", "SecurityType"), "0");
  EXPECT_EQ(store.Size(), 16u + 4u + 1u);  // options, security and the one list entry
  EXPECT_EQ(ReadSettings(store).custom_security, Strings{"TXT"});
  settings.custom_security.clear();  // an empty list stays empty
  ASSERT_TRUE(SaveSettings(settings, store));
  EXPECT_TRUE(ReadSettings(store).custom_security.empty());
}

}  // namespace
}  // namespace tarve
