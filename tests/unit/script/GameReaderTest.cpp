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

TEST(GameReader, ReadsCrLfAndWindows1252AndSurvivesFoldersGarbageOverlongAndUnendedFiles) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir, "define game <Caf\xE9>\r\n\tmsg <a\tb>\r\nend define"));
  EXPECT_EQ(LinesOf(t.game), (Lines{"define game <Café>", "    msg <a    b>", "end define"}));
  dir.Write("folder.gwl/x", "");
  EXPECT_FALSE(ReadGameFile(t.game, dir.path() + "/folder.gwl"));
  EXPECT_TRUE(ReadSource(t, dir, ""));
  EXPECT_EQ(t.game.text.LineCount(), 0);
  std::string garbage;
  for (int i = 0; i < 4096; ++i) garbage.push_back(static_cast<char>((i * 7919) & 0xFF));
  ReadSource(t, dir, garbage);  // either verdict, but no crash and no hang
  EXPECT_FALSE(ReadSource(t, dir, std::string(kMaxGameLines + 1, '\n')));
  EXPECT_EQ(t.host.log.back(),
            "Error: The game has more than 32767 lines, the most a game can hold.");
  EXPECT_FALSE(ReadSource(t, dir, "define game <G>\n  msg <x>\ndefine room <R>\nend define\n"));
  EXPECT_EQ(t.host.log.back(),
            "Error: Block 'define game <G>' at line 1 has no matching 'end define'.");
  // A brace closed inside a later block takes that block's define line: the game is refused.
  EXPECT_FALSE(ReadSource(t, dir,
                          "define room <Hall>\n  command <knock> {\nend define\n"
                          "define room <Yard>\n  }\nend define\n"));
  EXPECT_EQ(t.host.log.back(), "Fatal error:  has no parameter");
}

// Merging one library into a game is the reader/dump-rewriting transcript; here the order of
// several libraries' sections, where libraries are looked for, what a library may not hold, and
// the log.
TEST(Libraries, SectionsKeepTheirOrderAndLibrariesAreLookedForInTheProgramFolderNext) {
  TempDir dir;
  dir.Write("a.gwl",
            "!library\n!addto game\n  startscript msg <a1>\n!end\n!addto synonyms\n  a = take\n"
            "!end\n!addto game\n  startscript msg <a2>\n!end\n!include <a.gwl>\n!ADDTO game\n");
  dir.Write("program/b.gwl",
            "!addto game\n  startscript msg <b1>\n!end\n!addto synonyms\n  b = take\n!end\n");
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir,
                         "define game <G>\nend define\ndefine synonyms\nend define\n"
                         "!include <a.gwl>\n!include <B.GWL>\n"));
  EXPECT_EQ(LinesOf(t.game),
            (Lines{"define game <G>", "  startscript msg <a1>", "  startscript msg <a2>",
                   "  startscript msg <b1>", "end define", "define synonyms", "  a = take",
                   "  b = take", "end define", "", ""}));
  EXPECT_EQ(FindBlock(t.game, "synonyms"), (BlockRange{6, 9}));
  const std::string folder = "Including library " + dir.path();
  EXPECT_EQ(t.host.log,
            (Lines{folder + "/a.gwl (game path)", "WARNING: Library has no version information.",
                   "Unknown library keycode - !include <a.gwl>",
                   "Unknown library keycode - !ADDTO game", folder + "/B.GWL (game path)",
                   "Library not found in game path;", folder + "/program/B.GWL (app path)"}));

  TestGame missing(dir);
  missing.game.program_folder = dir.path();  // no second place to look
  EXPECT_FALSE(ReadSource(missing, dir, "!include <nowhere.gwl>\n"));
  EXPECT_EQ(missing.host.log,
            (Lines{folder + "/nowhere.gwl (game path)", "ERROR: Library not found."}));
}

}  // namespace
}  // namespace tarve
