#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "platform/QtSettingsStore.h"
#include "player/Settings.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

namespace fs = std::filesystem;
using test::TempDir;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(QtSettingsStore, ValuesSurviveReopeningTheFolder) {
  TempDir dir;
  const std::string folder = dir.path() + "/settings";  // made when first written
  {
    QtSettingsStore store(folder);
    EXPECT_EQ(store.FilePath(), folder + "/Tarve.conf");
    EXPECT_FALSE(store.Read("Games", "NumInstalled"));
    store.Write("Games", "Name1", "The Manor, a tale");
    store.Write("Games", "File1", "C:\\Games\\manor.gwl");
    store.Write("Games", "Name2", "@home = \"Élan\"; [x]");
    store.Write("Options", "LogFile", "");
    store.Write("Options", "Doomed", "x");
    store.Remove("Options", "Doomed");
    EXPECT_TRUE(store.Flush());
  }
  EXPECT_TRUE(fs::exists(folder + "/Tarve.conf"));
  QtSettingsStore again(folder);
  EXPECT_EQ(again.Read("Games", "Name1"), "The Manor, a tale");
  EXPECT_EQ(again.Read("Games", "File1"), "C:\\Games\\manor.gwl");
  EXPECT_EQ(again.Read("Games", "Name2"), "@home = \"Élan\"; [x]");
  EXPECT_EQ(again.Read("Options", "LogFile"), "");  // present and empty is not absent
  EXPECT_FALSE(again.Read("Options", "Doomed"));
  EXPECT_FALSE(again.Read("Games", "name1"));  // keys are the exact names
}

TEST(QtSettingsStore, SavedSettingsReadBackThroughTheFile) {
  TempDir dir;
  Settings s;
  s.log_errors = true;
  s.log_file = "/var/tmp/tarve log.log";
  s.default_font_size = 12.75f;
  s.security_type = 2;
  s.custom_security = {"TXT", "HTML"};
  {
    QtSettingsStore store(dir.path());
    ASSERT_TRUE(SaveSettings(s, store));
  }
  QtSettingsStore store(dir.path());
  const Settings back = ReadSettings(store);
  EXPECT_TRUE(back.log_errors);
  EXPECT_EQ(back.log_file, s.log_file);
  EXPECT_EQ(back.default_font_size, 12.75f);
  EXPECT_EQ(back.security_type, 2);
  EXPECT_EQ(back.custom_security, s.custom_security);
  // Written as plain text that a person can read and edit.
  const std::string text = ReadFile(dir.path() + "/Tarve.conf");
  EXPECT_NE(text.find("[Options]"), std::string::npos);
  EXPECT_NE(text.find("LogErrors=Yes"), std::string::npos);
  EXPECT_NE(text.find("NumberCustomSecurity=2"), std::string::npos);
}

TEST(QtSettingsStore, HandEditedAndDamagedFilesReadWithoutHarm) {
  TempDir dir;
  std::string garbage =
      "[Games]\nNumInstalled=999999\nName1=The Manor, a tale\nFile1=/g/manor.gwl\n"
      "[Options\nDefaultFontSize=abc\n=novalue\nnokey\n[Security]\nSecurityType=@Variant(\\0\\0)\n"
      "CustomSecurity1=\"unterminated\n";
  garbage += std::string("\0\xff\xfe[\x01]\n", 7);
  garbage += std::string(100000, 'x') + "\n";
  dir.Write("Tarve.conf", garbage);
  {
    QtSettingsStore store(dir.path());
    const Settings s = ReadSettings(store);
    EXPECT_GE(s.security_type, 0);
    const std::vector<InstalledGame> games = ReadInstalledGames(store);
    ASSERT_EQ(games.size(), 1u);
    EXPECT_EQ(games[0].name, "The Manor, a tale");  // an unquoted comma is kept as text
    // The store can still be written and read back.
    store.Write("Init", "InstalledVer", "TARVE-210");
    store.Flush();
  }
  QtSettingsStore store(dir.path());
  EXPECT_EQ(store.Read("Init", "InstalledVer"), "TARVE-210");
}

TEST(QtSettingsStore, SavingLeavesNoTemporaryFilesBehind) {
  TempDir dir;
  for (const char* font : {"Verdana", "Arial"}) {
    QtSettingsStore store(dir.path());
    store.Write("Options", "DefaultFontName", font);
    ASSERT_TRUE(store.Flush());
  }
  for (const auto& entry : fs::directory_iterator(dir.path())) {
    const std::string name = entry.path().filename().string();
    EXPECT_TRUE(name == "Tarve.conf" || name == "Tarve.conf.lock") << name;
  }
  EXPECT_EQ(QtSettingsStore(dir.path()).Read("Options", "DefaultFontName"), "Arial");
}

TEST(QtSettingsStore, FailedSaveLeavesThePreviousFileWhole) {
  if (geteuid() == 0) GTEST_SKIP() << "permissions do not bind the superuser";
  TempDir dir;
  {
    QtSettingsStore store(dir.path());
    store.Write("Options", "DefaultFontName", "Verdana");
    ASSERT_TRUE(store.Flush());
  }
  // In a folder where no new file can be made the save fails and the old file stays whole.
  fs::permissions(dir.path(), fs::perms::owner_read | fs::perms::owner_exec);
  {
    QtSettingsStore store(dir.path());
    store.Write("Options", "DefaultFontName", "Arial");
    EXPECT_FALSE(store.Flush());
  }
  fs::permissions(dir.path(), fs::perms::owner_all);
  QtSettingsStore store(dir.path());
  EXPECT_EQ(store.Read("Options", "DefaultFontName"), "Verdana");
}

}  // namespace
}  // namespace tarve
