#include <gtest/gtest.h>

#include "script/CommonCode.h"
#include "script/GameReader.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::LinesOf;
using test::ReadSource;
using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

TEST(GameReader, ReadsLinesAsTheyStandWithTabsExpanded) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir, "define game <G>\r\n\tmsg <a\tb>\r\n  ' kept\r\nend define"));
  EXPECT_EQ(LinesOf(t.game),
            (Lines{"define game <G>", "    msg <a    b>", "  ' kept", "end define"}));
}

TEST(GameReader, DecodesWindows1252WhenTheFileIsNotUtf8) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir, "define game <Caf\xE9>\nend define\n"));
  EXPECT_EQ(t.game.text.Line(1), "define game <Café>");
}

TEST(GameReader, RejectsUnknownExtensionsAndMissingFiles) {
  TempDir dir;
  TestGame t(dir);
  const std::string txt = dir.Write("game.txt", "define game <G>\nend define\n");
  EXPECT_FALSE(ReadGameFile(t.game, txt));
  EXPECT_FALSE(ReadGameFile(t.game, dir.path() + "/missing.gwl"));
  ASSERT_EQ(t.host.messages.size(), 1u);
  EXPECT_EQ(t.host.messages[0],
            "[Error] Unrecognized file extension!\n\nTarve can only read game files with .GWL or "
            ".CGW extensions.");
  // A folder named like a game is no game either.
  dir.Write("folder.gwl/x", "");
  EXPECT_FALSE(ReadGameFile(t.game, dir.path() + "/folder.gwl"));
}

TEST(GameReader, SurvivesEmptyGarbageAndOverlongFiles) {
  TempDir dir;
  {
    TestGame t(dir);
    EXPECT_TRUE(ReadSource(t, dir, ""));
    EXPECT_EQ(t.game.text.LineCount(), 0);
  }
  {
    TestGame t(dir);
    std::string garbage;
    for (int i = 0; i < 4096; ++i) garbage.push_back(static_cast<char>((i * 7919) & 0xFF));
    ReadSource(t, dir, garbage);  // either verdict, but no crash and no hang
  }
  {
    TestGame t(dir);
    std::string big;
    for (int i = 0; i < kMaxGameLines + 1; ++i) big += "msg <x>\n";
    EXPECT_FALSE(ReadSource(t, dir, big));
    EXPECT_EQ(t.host.log.back(),
              "Error: The game has more than 32767 lines, the most a game can hold.");
  }
  {
    TestGame t(dir);
    EXPECT_FALSE(ReadSource(t, dir, "define game <G>\n  msg <x>\ndefine room <R>\nend define\n"));
    EXPECT_EQ(t.host.log.back(),
              "Error: Block 'define game <G>' at line 1 has no matching 'end define'.");
  }
}

TEST(Libraries, MergeAppendsAndAddsToTheGameAndSynonymsBlocksInOrder) {
  TempDir dir;
  TestGame t(dir);
  dir.Write("lib.gwl",
            "!library\n"
            "!gwl-version <200>\n"
            "' a comment\n"
            "define procedure <fromlib>\n"
            "end define\n"
            "!addto game\n"
            "  startscript msg <one>\n"
            "  startscript msg <two>\n"
            "  startscript msg <three>\n"
            "!end\n"
            "!addto synonyms\n"
            "  grab = take\n"
            "!end\n"
            "!include <other.gwl>\n"
            "!ADDTO game\n");
  ASSERT_TRUE(ReadSource(t, dir,
                         "define game <G>\n"
                         "  start <Hall>\n"
                         "end define\n"
                         "!include <lib.gwl>\n"
                         "define room <Hall>\n"
                         "end define\n"));
  EXPECT_EQ(LinesOf(t.game),
            (Lines{"define game <G>", "  start <Hall>", "  startscript msg <one>",
                   "  startscript msg <two>", "  startscript msg <three>", "end define", "",
                   "define room <Hall>", "end define", "define procedure <fromlib>", "end define",
                   "define synonyms", "  grab = take", "end define"}));
  EXPECT_EQ(t.host.log, (Lines{"Including library " + dir.path() + "/lib.gwl (game path)",
                               "Unknown library keycode - !include <other.gwl>",
                               "Unknown library keycode - !ADDTO game"}));
  EXPECT_EQ(FindBlock(t.game, "synonyms"), (BlockRange{12, 14}));
}

// Sections of several libraries go into the game and synonyms blocks in the order they come,
// and the game's own include lines after the blocks are still found once lines were added above
// them.
TEST(Libraries, SectionsOfSeveralLibrariesKeepTheirOrder) {
  TempDir dir;
  TestGame t(dir);
  for (const char* name : {"a", "b"}) {
    dir.Write(std::string(name) + ".gwl", std::string("!addto game\n  startscript msg <") + name +
                                              "1>\n!end\n!addto synonyms\n  " + name +
                                              " = take\n!end\n!addto game\n  startscript msg <" +
                                              name + "2>\n!end\n");
  }
  ASSERT_TRUE(ReadSource(t, dir,
                         "define game <G>\n"
                         "end define\n"
                         "define synonyms\n"
                         "end define\n"
                         "!include <a.gwl>\n"
                         "!include <b.gwl>\n"));
  EXPECT_EQ(LinesOf(t.game),
            (Lines{"define game <G>", "  startscript msg <a1>", "  startscript msg <a2>",
                   "  startscript msg <b1>", "  startscript msg <b2>", "end define",
                   "define synonyms", "  a = take", "  b = take", "end define", "", ""}));
}

TEST(Libraries, AreLookedForInTheProgramFolderNextAndMayNotBeMissing) {
  TempDir dir;
  dir.Write("program/shared.gwl", "msg <no header>\n");
  dir.Write("nover.gwl", "!library\ndefine text <t>\nend define\n");
  {
    TestGame t(dir);
    ASSERT_TRUE(ReadSource(t, dir, "!include <shared.gwl>\n!include <NoVer.GWL>\n"));
    EXPECT_EQ(LinesOf(t.game), (Lines{"", "", "msg <no header>", "define text <t>", "end define"}));
    EXPECT_EQ(t.host.log,
              (Lines{"Including library " + dir.path() + "/shared.gwl (game path)",
                     "Library not found in game path;",
                     "Including library " + dir.path() + "/program/shared.gwl (app path)",
                     "Including library " + dir.path() + "/NoVer.GWL (game path)",
                     "WARNING: Library has no version information."}));
  }
  {
    TestGame t(dir);
    EXPECT_FALSE(ReadSource(t, dir, "!include <nowhere.gwl>\n"));
    EXPECT_EQ(t.host.log.back(), "ERROR: Library not found.");
  }
  {
    // A game in the program folder itself has no second place to look.
    TestGame t(dir);
    t.game.program_folder = dir.path();
    EXPECT_FALSE(ReadSource(t, dir, "!include <nowhere.gwl>\n"));
    EXPECT_EQ(t.host.log, (Lines{"Including library " + dir.path() + "/nowhere.gwl (game path)",
                                 "ERROR: Library not found."}));
  }
}

TEST(Libraries, ALibraryThatIncludesItselfIsMergedOnce) {
  TempDir dir;
  TestGame t(dir);
  dir.Write("self.gwl", "!include <self.gwl>\nmsg <once>\n");
  ASSERT_TRUE(ReadSource(t, dir, "!include <self.gwl>\n"));
  EXPECT_EQ(LinesOf(t.game), (Lines{"", "msg <once>"}));
  EXPECT_EQ(t.host.log.back(), "Unknown library keycode - !include <self.gwl>");
}

// How the reader rewrites braces, else lines and continued lines is the reader/dump-rewriting
// and reader/slips transcripts; here the one slip that refuses the game.
TEST(Braces, ABraceClosedInsideALaterBlockTakesItsDefineLineAndTheGameIsRefused) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_FALSE(ReadSource(t, dir,
                          "define room <Hall>\n"
                          "  command <knock> {\n"
                          "end define\n"
                          "define room <Yard>\n"
                          "  }\n"
                          "end define\n"));
  EXPECT_EQ(t.host.log.back(), "Fatal error:  has no parameter");
}

}  // namespace
}  // namespace tarve
