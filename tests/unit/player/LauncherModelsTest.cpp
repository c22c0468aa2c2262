// The window-free models behind the launcher and the options window where the windows' own tests
// cannot reach: the data folder and what the form keeps. Adding to a damaged installed-games
// list is in the settings tests.
#include <gtest/gtest.h>

#include "player/OptionsForm.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"

namespace tarve {
namespace {

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
