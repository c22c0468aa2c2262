// The window-free models behind the launcher and the options window where the windows' own tests
// cannot reach: a damaged installed-games list, the data folder, what the form keeps.
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace tarve
