// The window-free models behind the launcher and the options window where the windows' own tests
// cannot reach: adding to a damaged installed-games list, the data folder, what the form keeps.
#include <gtest/gtest.h>

#include "player/InstalledGamesList.h"
#include "player/OptionsForm.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

TEST(InstalledGamesList, AddStoresTheGameAfterTheStoredCount) {
  test::TempDir dir;
  test::TestGame t{dir};
  MemorySettingsStore store;
  store.Write("Games", "NumInstalled", "3");  // the second entry is gone
  store.Write("Games", "Name1", "One");
  store.Write("Games", "File1", "/g/one.gwl");
  InstalledGamesList list(store);
  ASSERT_EQ(list.size(), 1);
  EXPECT_TRUE(list.Add(t.game, dir.Write("manor.gwl", "define game <Manor>\nend define\n")).added);
  EXPECT_EQ(store.Read("Games", "Name4"), "Manor");
  EXPECT_EQ(store.Read("Games", "NumInstalled"), "4");
  EXPECT_EQ(list.games().back().name, "Manor");

  const InstalledGamesList::AddResult refused = list.Add(t.game, dir.path() + "/none.gwl");
  EXPECT_FALSE(refused.added);
  EXPECT_TRUE(refused.error.ends_with("- the file could not be opened."));
  EXPECT_EQ(list.size(), 2);
  EXPECT_TRUE(t.host.messages.empty());  // the window that asked tells the player
}

TEST(UserDataFolder, FollowsAnAbsoluteXdgDataHomeElseTheHomeFolder) {
  EXPECT_EQ(UserDataFolder("/data", "/home/ann"), "/data/Tarve");
  EXPECT_EQ(UserDataFolder("relative", "/home/ann"), "/home/ann/.local/share/Tarve");
  EXPECT_EQ(UserDataFolder(nullptr, nullptr), "");
}

TEST(OptionsForm, ConfirmWritesEveryKeyAndKeepsWhatIsNoColourOrNoLevel) {
  MemorySettingsStore store;
  Settings settings;
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
  EXPECT_EQ(ReadSettings(store).custom_security, std::vector<std::string>{"TXT"});
}

}  // namespace
}  // namespace tarve
