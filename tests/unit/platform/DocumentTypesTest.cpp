#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "platform/DocumentTypes.h"
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

std::size_t Count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    ++n;
  }
  return n;
}

// Points the desktop's data folder at a temporary folder for one test.
class DocumentTypesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* old = std::getenv("XDG_DATA_HOME");
    if (old != nullptr) saved_ = old;
    had_ = old != nullptr;
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
  std::string DesktopEntry() {
    return ReadFile(dir.path() + "/data/applications/tarve.desktop");
  }

  TempDir dir;
  std::string saved_;
  bool had_ = false;
};

TEST_F(DocumentTypesTest, EachTypeJoinsTheMimePackageAndTheDesktopEntry) {
  EXPECT_TRUE(AssociateFileType("Tarve Game", ".gwl"));
  EXPECT_TRUE(AssociateFileType("Tarve Game (Compiled)", ".cgw"));
  EXPECT_TRUE(AssociateFileType("Tarve Saved Game Data", ".tsg"));

  const std::string package = Package();
  EXPECT_NE(package.find("<mime-type type=\"application/x-tarve-game\">\n"
                         "    <comment>Tarve Game</comment>\n"
                         "    <sub-class-of type=\"text/plain\"/>\n"
                         "    <glob pattern=\"*.gwl\"/>"),
            std::string::npos)
      << package;
  EXPECT_NE(package.find("<comment>Tarve Game (Compiled)</comment>\n"
                         "    <glob pattern=\"*.cgw\"/>"),
            std::string::npos);
  EXPECT_NE(package.find("<mime-type type=\"application/x-tarve-saved-game\">\n"
                         "    <comment>Tarve Saved Game Data</comment>\n"
                         "    <glob pattern=\"*.tsg\"/>"),
            std::string::npos);

  const std::string entry = DesktopEntry();
  EXPECT_NE(entry.find("[Desktop Entry]\n"), std::string::npos);
  EXPECT_NE(entry.find("\nExec=tarve %f\n"), std::string::npos);
  EXPECT_NE(entry.find("\nMimeType=application/x-tarve-game;application/x-tarve-compiled-game;"
                       "application/x-tarve-saved-game;\n"),
            std::string::npos)
      << entry;
}

// A user who installs Tarve into ~/.local gets the very files that the first start writes there,
// and anyone else gets an entry that takes the installed one's place: both must say the same.
TEST_F(DocumentTypesTest, FirstStartWritesTheFilesThatAreInstalled) {
  AssociateFileType("Tarve Game", ".gwl");
  AssociateFileType("Tarve Game (Compiled)", ".cgw");
  AssociateFileType("Tarve Saved Game Data", ".tsg");
  EXPECT_EQ(Package(), ReadFile(std::string(TARVE_SOURCE_DATA) + "/tarve.xml"));
  EXPECT_EQ(DesktopEntry(),
            ReadFile(std::string(TARVE_SOURCE_DATA) + "/tarve.desktop"));
}

TEST_F(DocumentTypesTest, AssociatingAgainReplacesTheTypeAndEscapesItsText) {
  AssociateFileType("Tarve Game", ".gwl");
  AssociateFileType("Games <old> & new", ".GWL");
  const std::string package = Package();
  EXPECT_EQ(Count(package, "<mime-type "), 1u);
  EXPECT_NE(package.find("<comment>Games &lt;old&gt; &amp; new</comment>"), std::string::npos);
  EXPECT_EQ(Count(DesktopEntry(), "application/x-tarve-game;"), 1u);
}

TEST_F(DocumentTypesTest, UnwritableDataFolderIsReportedNotFatal) {
  // A file where the data folder should be: nothing can be written beneath it.
  dir.Write("data", "not a folder");
  EXPECT_FALSE(AssociateFileType("Tarve Game", ".gwl"));
}

}  // namespace
}  // namespace tarve
