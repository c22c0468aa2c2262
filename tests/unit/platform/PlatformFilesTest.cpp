// The platform services that write files: the settings file and the desktop's document types.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/DocumentTypes.h"
#include "platform/QtSettingsStore.h"
#include "player/Settings.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;

// Saving replaces the file whole: no temporary files are left beside it.
TEST(SettingsStore, ValuesSurviveReopeningAndDamagedFilesReadWithoutHarm) {
  TempDir dir;
  const std::string folder = dir.path() + "/settings";  // made when first written
  for (const char* font : {"Verdana", "Arial"}) {
    QtSettingsStore store(folder);
    EXPECT_EQ(store.FilePath(), folder + "/Tarve.conf");
    store.Write("Games", "Name1", "@home = \"Élan\"; [x], a tale");
    store.Write("Options", "LogFile", "");
    store.Write("Options", "DefaultFontName", font);
    store.Write("Options", "Doomed", font);
    store.Remove("Options", "Doomed");
    EXPECT_TRUE(store.Flush());
  }
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    EXPECT_TRUE(name == "Tarve.conf" || name == "Tarve.conf.lock") << name;
  }
  QtSettingsStore again(folder);
  EXPECT_EQ(again.Read("Games", "Name1"), "@home = \"Élan\"; [x], a tale");
  EXPECT_EQ(again.Read("Options", "DefaultFontName"), "Arial");
  EXPECT_EQ(again.Read("Options", "LogFile"), "");  // present and empty is not absent
  EXPECT_FALSE(again.Read("Options", "Doomed"));
  EXPECT_FALSE(again.Read("Games", "name1"));  // keys are the exact names

  // Hand-edited and damaged files read without harm, and can still be written.
  std::string garbage =
      "[Games]\nNumInstalled=999999\nName1=The Manor, a tale\nFile1=/g/manor.gwl\n"
      "[Options\nDefaultFontSize=abc\n=novalue\nnokey\n[Security]\nSecurityType=@Variant(\\0\\0)\n"
      "CustomSecurity1=\"unterminated\n";
  garbage += std::string("\0\xff\xfe[\x01]\n", 7) + std::string(100000, 'x') + "\n";
  dir.Write("Tarve.conf", garbage);
  QtSettingsStore damaged(dir.path());
  EXPECT_GE(ReadSettings(damaged).security_type, 0);
  const std::vector<InstalledGame> games = ReadInstalledGames(damaged);
  ASSERT_EQ(games.size(), 1u);
  EXPECT_EQ(games[0].name, "The Manor, a tale");  // an unquoted comma is kept as text
  damaged.Write("Init", "InstalledVer", "TARVE-210");
  EXPECT_TRUE(damaged.Flush());
  EXPECT_EQ(QtSettingsStore(dir.path()).Read("Init", "InstalledVer"), "TARVE-210");
}

// A user who installs into ~/.local gets the very files that the first start writes there, and
// anyone else gets an entry that takes the installed one's place: both must say the same.
TEST(DocumentTypes, FirstStartWritesTheInstalledFilesAndAssociatingAgainReplacesAType) {
  TempDir dir;
  setenv("XDG_DATA_HOME", (dir.path() + "/data").c_str(), 1);  // the desktop's data folder
  const auto data = [&](const std::string& file) { return ReadFile(dir.path() + "/data/" + file); };
  EXPECT_TRUE(AssociateFileType("Tarve Game", ".gwl"));
  EXPECT_TRUE(AssociateFileType("Tarve Game (Compiled)", ".cgw"));
  EXPECT_TRUE(AssociateFileType("Tarve Saved Game Data", ".tsg"));
  EXPECT_EQ(data("mime/packages/tarve.xml"), ReadFile(TARVE_SOURCE_DATA "/tarve.xml"));
  EXPECT_EQ(data("applications/tarve.desktop"), ReadFile(TARVE_SOURCE_DATA "/tarve.desktop"));

  AssociateFileType("Games <old> & new", ".GWL");
  const std::string package = data("mime/packages/tarve.xml");
  EXPECT_EQ(package.find("Tarve Game<"), std::string::npos);
  EXPECT_NE(package.find("<comment>Games &lt;old&gt; &amp; new</comment>"), std::string::npos);
  const std::string entry = data("applications/tarve.desktop");
  EXPECT_EQ(entry.find("application/x-tarve-game;"), entry.rfind("application/x-tarve-game;"));
  // A file where the data folder should be: nothing can be written, which is reported.
  setenv("XDG_DATA_HOME", dir.Write("file", "not a folder").c_str(), 1);
  EXPECT_FALSE(AssociateFileType("Tarve Game", ".gwl"));
}

}  // namespace
}  // namespace tarve
