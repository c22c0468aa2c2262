#include <gtest/gtest.h>

#include "script/CommonCode.h"
#include "script/GameReader.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

// Keywords in any case and indentation, and a keyword without its blank, are the
// interpreter/statements transcript.
TEST(LineText, PrefixesKeywordsParametersAndBlockTypes) {
  EXPECT_TRUE(BeginsWith("ÉCLAIR au chocolat", "écl"));
  EXPECT_FALSE(BeginsWith("msg", "msg "));
  EXPECT_FALSE(BeginsWith("look", " look"));
  // The keyword and its blank alone give an empty text (this once read past the line's end).
  EXPECT_EQ(TextAfterKeyword("    script ", "script "), "");
  EXPECT_EQ(TextAfterKeyword("  description", "description "), "");
  EXPECT_EQ(BlockTypeOf("define"), "");  // block types are read at fixed character positions

  TempDir dir;
  TestGame t(dir);
  // Only the prefix's length counts: the text is not checked against it.
  EXPECT_EQ(GetEverythingAfter(t.game, "été <x>", "abcd"), "<x>");
  EXPECT_EQ(GetEverythingAfter(t.game, "msg", "msg <"), "");
  EXPECT_EQ(RetrieveParameter(t.game, "look <a> <b>", false), "a");
  EXPECT_EQ(RetrieveParameter(t.game, "msg < spaced  out >", true), " spaced  out ");
  EXPECT_EQ(RetrieveParameter(t.game, "msg >a<", true), "");
  EXPECT_EQ(t.host.log, (Lines{"Error: Expected text after 'msg <' in 'msg'",
                               "Error: Expected a <...> parameter in 'msg >a<'"}));
}

TEST(BlockIndex, IndexesTopLevelBlocksAndFindsBlocksAndTagsByTypeAndExactName) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir,
                         "define room <Hall>\n"
                         "  define object <lamp>\n"
                         "    prefix <a>\n"
                         "  end define\n"
                         "  lookat <the ceiling>\n"
                         "  look <A long hall.>\n"
                         "  prefix <the>\n"
                         "  use <Key> unlock\n"
                         "end define\n"
                         "  Define Room <Cellar>\n"
                         "end define\n"
                         "define room <Hall>\n"
                         "end define\n"));
  EXPECT_EQ(t.game.text.BlockCount(), 3);
  EXPECT_EQ(FindBlock(t.game, "object"), BlockRange{});  // nested blocks have no record
  const BlockRange hall = FindBlockByName(t.game, "room", "Hall");
  EXPECT_EQ(hall, (BlockRange{1, 9}));
  EXPECT_EQ(FindBlockByName(t.game, "room", "hall"), BlockRange{});
  EXPECT_EQ(FindBlockByName(t.game, "room", "Cellar"), BlockRange{});
  EXPECT_EQ(FindBlockByName(t.game, "e", "Cellar"), (BlockRange{10, 11}));
  // Tags are found by prefix, outside nested blocks.
  EXPECT_EQ(FindTagInBlock(t.game, hall, "prefix"), "the");
  EXPECT_EQ(FindTagInBlock(t.game, hall, "look"), "the ceiling");
  EXPECT_EQ(FindTagInBlock(t.game, hall, "look "), "A long hall.");
  EXPECT_EQ(FindTagInBlock(t.game, BlockRange{}, "look"), "");
  EXPECT_EQ(FindLineWithTagAndParameter(t.game, hall, "use", " KEY "), "use <Key> unlock");
  EXPECT_EQ(FindLineWithTagAndParameter(t.game, hall, "use", "rope"), "");
  // Added blocks are found, and earlier ones keep precedence.
  for (int line = 14; line < 18; line += 2) {
    ASSERT_TRUE(AddLine(t.game.text, line == 14 ? "define room <Hall>" : "define room <Yard>"));
    ASSERT_TRUE(AddLine(t.game.text, "end define"));
    AddBlock(t.game.text, line, line + 1);
  }
  EXPECT_EQ(FindBlockByName(t.game, "room", "Yard"), (BlockRange{16, 17}));
  EXPECT_EQ(FindBlockByName(t.game, "room", "Hall"), hall);

  GameText text;
  for (int i = 0; i < kMaxGameLines; ++i) ASSERT_TRUE(AddLine(text, "x"));
  EXPECT_FALSE(AddLine(text, "one too many"));
}

// Bad angle brackets are the saved/refused transcript.
TEST(CheckBracketsAndNames, NamesEveryBlockButSynonymsAndStopsAtANamelessGame) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_FALSE(ReadSource(t, dir,
                          "define room\nend define\ndefine synonyms\nend define\n"
                          "define object\nend define\n"));
  EXPECT_EQ(t.host.log, (Lines{"Fatal error: define room has no parameter",
                               "Fatal error: define object has no parameter"}));
  t.host.log.clear();
  EXPECT_FALSE(ReadSource(t, dir, "define game\nend define\ndefine room\nend define\n"));
  EXPECT_EQ(t.host.log, Lines{"Fatal error: 'define game' has no parameter - game has no name"});
  t.host.log.clear();
  EXPECT_TRUE(ReadSource(t, dir, "define room <Hall>\nend define\n"));  // no game block needed
  EXPECT_TRUE(t.host.log.empty());
}

}  // namespace
}  // namespace tarve
