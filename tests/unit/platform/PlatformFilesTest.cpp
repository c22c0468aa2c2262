// The platform services that write files: the settings file and the desktop's document types.
// One fixture gives each test a fresh folder and points the desktop's data folder into it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/DocumentTypes.h"
#include "platform/QtSettingsStore.h"
#include "player/Settings.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;

std::size_t Count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    ++n;
  }
  return n;
}

class PlatformFilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* old = std::getenv("XDG_DATA_HOME");
    had_ = old != nullptr;
    if (had_) saved_ = old;
    setenv("XDG_DATA_HOME", (dir.path() + "/data").c_str(), 1);
  }
  void TearDown() override {
    if (had_) {
      setenv("XDG_DATA_HOME", saved_.c_str(), 1);
    } else {
      unsetenv("XDG_DATA_HOME");
    }
  }
  std::string Package() { return ReadFile(dir.path() + "/data/mime/packages/tarve.xml"); }
  std::string DesktopEntry() { return ReadFile(dir.path() + "/data/applications/tarve.desktop"); }

  TempDir dir;
  std::string saved_;
  bool had_ = false;
};

TEST_F(PlatformFilesTest, SettingsStoreValuesSurviveReopeningTheFolder) {
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

TEST_F(PlatformFilesTest, SettingsStoreHandEditedAndDamagedFilesReadWithoutHarm) {
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

TEST_F(PlatformFilesTest, SettingsStoreSavingLeavesNoTemporaryFilesBehind) {
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

TEST_F(PlatformFilesTest, SettingsStoreFailedSaveLeavesThePreviousFileWhole) {
  if (geteuid() == 0) GTEST_SKIP() << "permissions do not bind the superuser";
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

// A user who installs Tarve into ~/.local gets the very files that the first start writes there,
// and anyone else gets an entry that takes the installed one's place: both must say the same.
TEST_F(PlatformFilesTest, DocumentTypesFirstStartWritesTheFilesThatAreInstalled) {
  EXPECT_TRUE(AssociateFileType("Tarve Game", ".gwl"));
  EXPECT_TRUE(AssociateFileType("Tarve Game (Compiled)", ".cgw"));
  EXPECT_TRUE(AssociateFileType("Tarve Saved Game Data", ".tsg"));
  EXPECT_EQ(Package(), ReadFile(std::string(TARVE_SOURCE_DATA) + "/tarve.xml"));
  EXPECT_EQ(DesktopEntry(), ReadFile(std::string(TARVE_SOURCE_DATA) + "/tarve.desktop"));
}

TEST_F(PlatformFilesTest, DocumentTypesAssociatingAgainReplacesTheTypeAndEscapesItsText) {
  AssociateFileType("Tarve Game", ".gwl");
  AssociateFileType("Games <old> & new", ".GWL");
  const std::string package = Package();
  EXPECT_EQ(Count(package, "<mime-type "), 1u);
  EXPECT_NE(package.find("<comment>Games &lt;old&gt; &amp; new</comment>"), std::string::npos);
  EXPECT_EQ(Count(DesktopEntry(), "application/x-tarve-game;"), 1u);
}

TEST_F(PlatformFilesTest, DocumentTypesUnwritableDataFolderIsReportedNotFatal) {
  // A file where the data folder should be: nothing can be written beneath it.
  dir.Write("data", "not a folder");
  EXPECT_FALSE(AssociateFileType("Tarve Game", ".gwl"));
}

}  // namespace
}  // namespace tarve
