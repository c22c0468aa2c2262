#include <gtest/gtest.h>

#include "script/CommonCode.h"
#include "script/GameReader.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

TEST(BeginsWith, IgnoresCaseAndTheLinesLeadingBlanksButNotThePrefixs) {
  EXPECT_TRUE(BeginsWith("  Define Room <Hall>", "define room"));
  EXPECT_TRUE(BeginsWith("MSG <hello>", "msg "));
  EXPECT_FALSE(BeginsWith("msg<hello>", "msg "));
  EXPECT_FALSE(BeginsWith("define game<x>", "define game "));
  EXPECT_FALSE(BeginsWith("msg", "msg "));  // a prefix longer than the line never matches
  EXPECT_FALSE(BeginsWith("look", " look"));
  EXPECT_TRUE(BeginsWith("ÉCLAIR au chocolat", "écl"));
  EXPECT_TRUE(BeginsWith("anything", ""));
}

TEST(GetEverythingAfter, CountsCharactersAndLogsAPrefixLongerThanTheText) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_EQ(GetEverythingAfter(t.game, "script msg <x>", "script "), "msg <x>");
  // Only the prefix's length counts: the text is not checked against it.
  EXPECT_EQ(GetEverythingAfter(t.game, "été <x>", "abcd"), "<x>");
  EXPECT_TRUE(t.host.log.empty());
  EXPECT_EQ(GetEverythingAfter(t.game, "msg", "msg <"), "");
  ASSERT_EQ(t.host.log.size(), 1u);
  EXPECT_EQ(t.host.log[0], "Error: Expected text after 'msg <' in 'msg'");
}

// A line that holds the keyword and its blank and nothing more begins with the keyword, yet
// trimmed it is shorter than the keyword: it gives an empty text (it once read past its end).
TEST(TextAfterKeyword, TrimsTheTextAndGivesNothingForTheKeywordAlone) {
  EXPECT_EQ(TextAfterKeyword("    script  msg <hello>  ", "script "), "msg <hello>");
  EXPECT_EQ(TextAfterKeyword("startscript do <a>", "startscript "), "do <a>");
  EXPECT_EQ(TextAfterKeyword("    script ", "script "), "");
  EXPECT_EQ(TextAfterKeyword("  description", "description "), "");
  EXPECT_EQ(TextAfterKeyword("", "script "), "");
}

TEST(RetrieveParameter, TakesTheFirstPairAndLogsALineWithoutOne) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_EQ(RetrieveParameter(t.game, "look <a> <b>", false), "a");
  EXPECT_EQ(RetrieveParameter(t.game, "msg < spaced  out >", true), " spaced  out ");
  EXPECT_EQ(RetrieveParameter(t.game, "msg <>", true), "");
  EXPECT_TRUE(t.host.log.empty());
  EXPECT_EQ(RetrieveParameter(t.game, "msg hello", true), "");
  EXPECT_EQ(RetrieveParameter(t.game, "msg >a<", true), "");
  EXPECT_EQ(RetrieveParameter(t.game, "msg <open", true), "");
  ASSERT_EQ(t.host.log.size(), 3u);
  EXPECT_EQ(t.host.log[0], "Error: Expected a <...> parameter in 'msg hello'");
  EXPECT_EQ(t.host.log[1], "Error: Expected a <...> parameter in 'msg >a<'");
}

TEST(BlockTypeOf, ReadsFixedCharacterPositions) {
  EXPECT_EQ(BlockTypeOf("define game <x>"), "game");
  EXPECT_EQ(BlockTypeOf("define synonyms"), "synonyms");
  EXPECT_EQ(BlockTypeOf("  Define Room <Hall>"), "e");
  EXPECT_EQ(BlockTypeOf("define  room <Hall>"), "");
  EXPECT_EQ(BlockTypeOf("define"), "");
}

TEST(BlockIndex, IndexesTopLevelBlocksAndFindsTheFirstByTypeAndExactName) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir,
                         "define game <G>\n"
                         "end define\n"
                         "define room <Hall>\n"
                         "  define object <lamp>\n"
                         "    define text <inner>\n"
                         "    end define\n"
                         "  end define\n"
                         "end define\n"
                         "  Define Room <Cellar>\n"
                         "end define\n"
                         "define room <Hall>\n"
                         "end define\n"));
  const GameText& text = t.game.text;
  ASSERT_EQ(text.BlockCount(), 4);
  EXPECT_EQ(text.blocks[2].start, 3);
  EXPECT_EQ(text.blocks[2].end, 8);
  EXPECT_EQ(FindBlock(t.game, "game"), (BlockRange{1, 2}));
  EXPECT_EQ(FindBlock(t.game, "object"), BlockRange{});  // nested blocks have no record
  EXPECT_EQ(FindBlockByName(t.game, "room", "Hall"), (BlockRange{3, 8}));
  EXPECT_EQ(FindBlockByName(t.game, "room", "hall"), BlockRange{});
  // The indented define line is a block of type "e", which no room lookup sees.
  EXPECT_EQ(FindBlockByName(t.game, "room", "Cellar"), BlockRange{});
  EXPECT_EQ(FindBlockByName(t.game, "e", "Cellar"), (BlockRange{9, 10}));
}

TEST(BlockIndex, AddedBlocksAreFoundAndEarlierBlocksKeepPrecedence) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir, "define procedure <p>\nmsg <a>\nend define\n"));
  ASSERT_TRUE(AddLine(t.game.text, "define procedure <p>"));
  ASSERT_TRUE(AddLine(t.game.text, "end define"));
  AddBlock(t.game.text, 4, 5);
  ASSERT_TRUE(AddLine(t.game.text, "define procedure <q>"));
  ASSERT_TRUE(AddLine(t.game.text, "end define"));
  AddBlock(t.game.text, 6, 7);
  EXPECT_EQ(FindBlockByName(t.game, "procedure", "p"), (BlockRange{1, 3}));
  EXPECT_EQ(FindBlockByName(t.game, "procedure", "q"), (BlockRange{6, 7}));
}

TEST(FindTagInBlock, SkipsNestedBlocksAndMatchesByPrefix) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(t, dir,
                         "define room <Hall>\n"
                         "  define object <lamp>\n"
                         "    prefix <a>\n"
                         "    look <A brass lamp.>\n"
                         "  end define\n"
                         "  lookat <the ceiling>\n"
                         "  look <A long hall.>\n"
                         "  prefix <the>\n"
                         "  use <Key> unlock\n"
                         "  use <lamp> msg <The lamp glows.>\n"
                         "end define\n"));
  const BlockRange hall = FindBlockByName(t.game, "room", "Hall");
  EXPECT_EQ(FindTagInBlock(t.game, hall, "prefix"), "the");
  EXPECT_EQ(FindTagInBlock(t.game, hall, "look"), "the ceiling");  // "look" matches "lookat"
  EXPECT_EQ(FindTagInBlock(t.game, hall, "look "), "A long hall.");
  EXPECT_EQ(FindTagInBlock(t.game, hall, "alias"), "");
  EXPECT_EQ(FindLineWithTagAndParameter(t.game, hall, "use", " LAMP "),
            "use <lamp> msg <The lamp glows.>");
  EXPECT_EQ(FindLineWithTagAndParameter(t.game, hall, "use", "key"), "use <Key> unlock");
  EXPECT_EQ(FindLineWithTagAndParameter(t.game, hall, "use", "rope"), "");
  EXPECT_EQ(FindTagInBlock(t.game, BlockRange{}, "look"), "");
}

TEST(AddLine, StopsAtTheLineLimit) {
  GameText text;
  for (int i = 0; i < kMaxGameLines; ++i) ASSERT_TRUE(AddLine(text, "x"));
  EXPECT_FALSE(AddLine(text, "one too many"));
  EXPECT_EQ(text.LineCount(), kMaxGameLines);
}

TEST(CheckBracketsAndNames, ReportsEveryBadLineThenStops) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_FALSE(ReadSource(t, dir,
                          "define game <G>\n"
                          "  msg <a > b>\n"
                          "  msg <open\n"
                          "  msg >a<\n"
                          "end define\n"
                          "define room\n"
                          "end define\n"));
  EXPECT_EQ(t.host.log,
            (std::vector<std::string>{"Too many > in   msg <a > b>", "Expected > in   msg <open"}));
  ASSERT_EQ(t.host.messages.size(), 1u);
  EXPECT_EQ(t.host.messages[0], "[Failed to load game] Errors found in " + dir.path() +
                                    "/game.gwl: Read logfile (if enabled) for details.");
}

TEST(CheckBracketsAndNames, NamesEveryBlockButSynonymsAndStopsAtANamelessGame) {
  TempDir dir;
  {
    TestGame t(dir);
    EXPECT_FALSE(ReadSource(t, dir,
                            "define room\nend define\n"
                            "define synonyms\nend define\n"
                            "define object\nend define\n"));
    EXPECT_EQ(t.host.log,
              (std::vector<std::string>{"Fatal error: define room has no parameter",
                                        "Fatal error: define object has no parameter"}));
  }
  {
    TestGame t(dir);
    EXPECT_FALSE(ReadSource(t, dir, "define game\nend define\ndefine room\nend define\n"));
    EXPECT_EQ(t.host.log, (std::vector<std::string>{
                              "Fatal error: 'define game' has no parameter - game has no name"}));
  }
  {
    TestGame t(dir);  // a game without a game block is still readable
    EXPECT_TRUE(
        ReadSource(t, dir, "define room <Hall>\nend define\ndefine synonyms\nend define\n"));
    EXPECT_TRUE(t.host.log.empty());
  }
}

}  // namespace
}  // namespace tarve
