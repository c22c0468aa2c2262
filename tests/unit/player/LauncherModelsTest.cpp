// The window-free models behind the launcher, its list editor and the options window: the
// installed-games list, the options form and the custom list of file types.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "player/InstalledGamesList.h"
#include "player/OptionsForm.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;

std::vector<std::string> Names(const InstalledGamesList& list) {
  std::vector<std::string> names;
  for (const InstalledGame& game : list.games()) names.push_back(game.name);
  return names;
}

void StoreGames(SettingsStore& store, const std::vector<InstalledGame>& games) {
  ASSERT_TRUE(WriteInstalledGames(store, games));
}

TEST(InstalledGamesList, EditsWaitForWriteBackWhichNumbersTheListFromOne) {
  MemorySettingsStore store;
  StoreGames(store, {{"A", "/g/a.gwl"}, {"B", "/g/b.gwl"}, {"C", "/g/c.gwl"}, {"D", "/g/d.gwl"}});
  InstalledGamesList list(store);

  EXPECT_TRUE(list.Rename(1, "Bee"));
  EXPECT_FALSE(list.Rename(1, "  "));  // a blank name would leave an empty button
  EXPECT_FALSE(list.Rename(4, "E"));
  EXPECT_TRUE(list.ChangeFile(2, "/g/see.cgw"));
  EXPECT_FALSE(list.ChangeFile(2, ""));
  // One place at a time; past an end the entry comes round to the other end.
  EXPECT_EQ(list.MoveUp(0), 3);
  EXPECT_EQ(Names(list), (std::vector<std::string>{"Bee", "C", "D", "A"}));
  EXPECT_EQ(list.MoveDown(3), 0);
  EXPECT_EQ(list.MoveDown(0), 1);
  EXPECT_EQ(list.MoveUp(-1), -1);
  EXPECT_EQ(Names(list), (std::vector<std::string>{"Bee", "A", "C", "D"}));
  EXPECT_TRUE(list.Remove(3));
  EXPECT_FALSE(list.Remove(3));

  // Nothing reaches the store before the list is written back.
  EXPECT_EQ(store.Read("Games", "Name2"), "B");
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "4");

  ASSERT_TRUE(list.WriteBack());
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "3");
  EXPECT_EQ(store.Read("Games", "File3"), "/g/see.cgw");
  EXPECT_FALSE(store.Read("Games", "Name4"));

  // Reloading forgets edits that were not written.
  list.Rename(0, "Forgotten");
  list.Reload();
  EXPECT_EQ(Names(list), (std::vector<std::string>{"Bee", "A", "C"}));
}

TEST(InstalledGamesList, AddStoresTheGameAfterTheStoredCountAndReadsTheListAgain) {
  TempDir dir;
  TestGame t{dir};
  MemorySettingsStore store;
  // A damaged list: the count says three, the second entry has lost its file.
  store.Write("Games", "NumInstalled", "3");
  store.Write("Games", "Name1", "One");
  store.Write("Games", "File1", "/g/one.gwl");
  store.Write("Games", "Name3", "Three");
  store.Write("Games", "File3", "/g/three.gwl");
  InstalledGamesList list(store);
  ASSERT_EQ(list.size(), 2);

  const std::string manor = dir.Write("manor.gwl", "define game <Manor>\nend define\n");
  const InstalledGamesList::AddResult added = list.Add(t.game, manor);
  EXPECT_TRUE(added.added);
  EXPECT_EQ(added.error, "");
  EXPECT_EQ(store.Read("Games", "Name4"), "Manor");
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "4");
  EXPECT_EQ(Names(list), (std::vector<std::string>{"One", "Three", "Manor"}));

  const InstalledGamesList::AddResult refused = list.Add(t.game, dir.path() + "/none.gwl");
  EXPECT_FALSE(refused.added);
  EXPECT_TRUE(refused.error.ends_with("- the file could not be opened."));
  EXPECT_EQ(list.size(), 3);
  EXPECT_TRUE(t.host.messages.empty());  // the window that asked tells the player
}

TEST(UserDataFolder, FollowsAnAbsoluteXdgDataHomeElseTheHomeFolder) {
  EXPECT_EQ(UserDataFolder("/data", "/home/ann"), "/data/Tarve");
  EXPECT_EQ(UserDataFolder("relative", "/home/ann"), "/home/ann/.local/share/Tarve");
  EXPECT_EQ(UserDataFolder("", "/home/ann"), "/home/ann/.local/share/Tarve");
  EXPECT_EQ(UserDataFolder(nullptr, nullptr), "");
}

TEST(OptionsForm, ConfirmGivesSwitchedOnFilesWithoutANameTheirDefaultFiles) {
  TempDir dir;
  const std::string folder = dir.path() + "/share/Tarve";  // not there yet
  MemorySettingsStore store;
  Settings settings;
  settings.out_file = "/old/out.txt";
  OptionsForm form(settings, folder);
  form.values.log_errors = true;
  form.values.log_file = "";
  form.values.output_file = true;
  form.values.out_file = "  ";
  ASSERT_TRUE(form.Confirm(settings, store));
  EXPECT_EQ(form.values.log_file, folder + "/TARVELOG.LOG");  // the box shows it
  EXPECT_EQ(settings.log_file, folder + "/TARVELOG.LOG");
  EXPECT_EQ(store.Read("Options", "LogFile"), folder + "/TARVELOG.LOG");
  EXPECT_EQ(store.Read("Options", "OutFile"), folder + "/GAMELOG.LOG");
  EXPECT_EQ(store.Read("Options", "LogErrors"), "Yes");
  EXPECT_TRUE(std::filesystem::is_directory(folder));

  // A name typed while its switch is off is not taken.
  OptionsForm off(settings, folder);
  off.values.output_file = false;
  off.values.out_file = "/elsewhere.txt";
  ASSERT_TRUE(off.Confirm(settings, store));
  EXPECT_EQ(store.Read("Options", "OutputFile"), "No");
  EXPECT_EQ(store.Read("Options", "OutFile"), folder + "/GAMELOG.LOG");
}

TEST(OptionsForm, ConfirmWritesEveryKeyAndKeepsWhatIsNoColourOrNoLevel) {
  MemorySettingsStore store;
  Settings settings;
  settings.security_type = 0;  // read from a damaged store
  OptionsForm form(settings, "/unused");
  form.values.label_foreground_colour = "a0b1c2";
  form.values.label_background_colour = "12345";
  form.values.detailed_look = false;
  form.values.custom_security = {"TXT"};
  ASSERT_TRUE(form.Confirm(settings, store));
  EXPECT_EQ(settings.label_foreground_colour, "A0B1C2");
  EXPECT_EQ(form.values.label_background_colour, "600070");
  EXPECT_EQ(store.Read("Options", "LabelBackgroundColour"), "600070");
  EXPECT_EQ(store.Read("Security", "SecurityType"), "0");
  EXPECT_EQ(store.Read("Options", "DetailedLook"), "No");
  // Sixteen keys of options, four of security and the one list entry.
  EXPECT_EQ(store.Size(), 16u + 4u + 1u);
  const Settings read = ReadSettings(store);
  EXPECT_EQ(read.custom_security, std::vector<std::string>{"TXT"});
  EXPECT_FALSE(read.detailed_look);
}

TEST(CustomSecurityList, EntryIsTheFileTypeTheCheckCompares) {
  EXPECT_EQ(CustomSecurityList::EntryFor(".txt"), "TXT");
  EXPECT_EQ(CustomSecurityList::EntryFor("  doc "), "DOC");
  EXPECT_EQ(CustomSecurityList::EntryFor("..Bat"), "BAT");
  EXPECT_EQ(CustomSecurityList::EntryFor("tar.gz"), "GZ");
  EXPECT_EQ(CustomSecurityList::EntryFor("jpeg"), "JPE");  // only three characters are compared
  EXPECT_EQ(CustomSecurityList::EntryFor(" . "), "");
}

}  // namespace
}  // namespace tarve
