#include <gtest/gtest.h>

#include "base/Files.h"
#include "base/Text.h"
#include "script/CompiledGame.h"
#include "script/GameReader.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::LinesOf;
using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

KeywordTable ShippedTable() {
  std::string text;
  EXPECT_TRUE(ReadWholeFile(std::string(TARVE_SOURCE_DATA) + "/tarve.dat", text));
  std::vector<std::string> problems;
  KeywordTable table = ParseKeywordTable(text, problems);
  EXPECT_TRUE(problems.empty()) << problems.front();
  return table;
}

// A table with a few keywords at fixed codes, for hand-made files.
KeywordTable SmallTable() {
  std::vector<std::string> problems;
  return ParseKeywordTable(
      "# test table\n!cr;1, !quote;2, !unknown;3, msg;10, room;11,\n"
      "define;12, text;13, end;14, \"look;15\"",
      problems);
}

Lines Read(TestGame& t, std::string_view bytes) {
  Lines lines;
  ReadCompiledGame(t.game, bytes, lines);
  return lines;
}

TEST(KeywordTable, ReadsFieldsAndReportsBadCodes) {
  std::vector<std::string> problems;
  KeywordTable table = ParseKeywordTable(
      "#comment, msg ; 10, look;300, nocode, \"say;11\"\r\ngive;10.5, room;12", problems);
  EXPECT_EQ(table.entries[10], "msg");
  EXPECT_EQ(table.entries[11], "say");
  EXPECT_EQ(table.entries[12], "room");
  EXPECT_EQ(table.CodeOf("msg"), 10);
  EXPECT_EQ(table.CodeOf("look"), -1);
  ASSERT_EQ(problems.size(), 3u);
  EXPECT_EQ(problems[0],
            "Error: tarve.dat entry 'look;300' has a code outside 0 to 255; it is ignored.");
  EXPECT_EQ(problems[1], "Warning: tarve.dat entry 'nocode' has no code; it is ignored.");
}

TEST(KeywordTable, ShippedTableHasTheSpecialEntriesAndKeepsTheMarkerCodesFree) {
  KeywordTable table = ShippedTable();
  EXPECT_GE(table.CodeOf("!cr"), 0);
  EXPECT_GE(table.CodeOf("!quote"), 0);
  EXPECT_GE(table.CodeOf("!unknown"), 0);
  EXPECT_EQ(table.entries[0], "");
  EXPECT_EQ(table.entries[253], "");
  EXPECT_EQ(table.entries[254], "");
}

TEST(KeywordTable, AnEmptyTableReadsCompiledGamesWithoutHarmAndCannotWriteThem) {
  std::vector<std::string> problems;
  const KeywordTable empty = ParseKeywordTable("", problems);
  EXPECT_TRUE(empty.loaded);
  EXPECT_TRUE(problems.empty());
  CompileGame(empty, {"msg <x>"}, problems);
  EXPECT_EQ(problems, (Lines{"Error: The keyword table lacks the !cr, !quote or !unknown entry."}));

  TempDir dir;
  TestGame t(dir);
  t.game.keywords = empty;
  // Every byte is a code without an entry: the stream is one line of blanks.
  EXPECT_EQ(Read(t, std::string("TCGF001\0\x01\x02\x00\xFE\xFD", 13)), (Lines{""}));
}

TEST(KeywordTable, MissingFileIsLoggedAndCompiledGamesRefused) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_FALSE(LoadKeywordTable(t.game));
  EXPECT_EQ(t.host.log.back(), "Warning: Unable to read " + dir.path() +
                                   "/program/tarve.dat; compiled games cannot be opened.");
  const std::string path = dir.Write("game.cgw", std::string("TCGF001\0", 8));
  EXPECT_FALSE(ReadGameFile(t.game, path));
  EXPECT_EQ(t.host.log.back(),
            "Error: Compiled games cannot be opened without the keyword table tarve.dat.");
}

TEST(CompiledGameReader, DecodesTokensQuotesLiteralsAndTextBlocks) {
  TempDir dir;
  TestGame t(dir);
  t.game.keywords = SmallTable();
  using namespace std::string_literals;
  const std::string bytes = "TCGF001\x7F"s + "\x0C\x0B\x02\xB7\x8E\x00\x01"s +  // define room <Hq>
                            "\x0A\x03"s + "Caf\xE9!\xFE\x01"s +                 // msg Café!
                            "\x0C\x0D\x02\x9E\x00\x01"s +                       // define text <a>
                            "\xDF\xDF\x97\x96\x00\x00\xB5\xFD"s +               // "  hi", "", "J"
                            "\x0E\x0C\x01"s +                                   // end define
                            "\x0A\x0A\x01"s;                                    // msg msg
  EXPECT_EQ(Read(t, bytes), (Lines{"define room <Hq>", "msg Café!", "define text <a>", "  hi", "",
                                   "J", "end define", "msg msg"}));
}

TEST(CompiledGameReader, RejectsOtherFilesAndSurvivesDamage) {
  TempDir dir;
  TestGame t(dir);
  t.game.keywords = SmallTable();
  Lines lines;
  EXPECT_FALSE(ReadCompiledGame(t.game, std::string("TCGF002\0", 8), lines));
  EXPECT_FALSE(ReadCompiledGame(t.game, "", lines));
  EXPECT_TRUE(lines.empty());
  EXPECT_EQ(t.host.messages,
            (Lines{"[Tarve] Invalid or corrupted file!", "[Tarve] Invalid or corrupted file!"}));
  EXPECT_TRUE(ReadCompiledGame(t.game, std::string("TCGF001\0", 8), lines));
  EXPECT_TRUE(lines.empty());

  // A quoted parameter or a literal that never ends, codes without an entry, and a text block
  // that never ends give damaged lines, never a crash.
  using namespace std::string_literals;
  EXPECT_EQ(Read(t, "TCGF001\0\x0A\x02\xB7\x8E"s), (Lines{"msg <Hq>"}));
  EXPECT_EQ(Read(t, "TCGF001\0\x03open"s), (Lines{"open"}));
  EXPECT_EQ(Read(t, "TCGF001\0\x0A\x63\x0A\x01"s), (Lines{"msg  msg"}));
  EXPECT_EQ(Read(t, "TCGF001\0\x0C\x0D\x01\x9E\x9E"s), (Lines{"define text", "aa"}));
}

TEST(CompiledGameReader, ReadsEveryTruncationOfAGameWithoutHarm) {
  std::vector<std::string> problems;
  const std::string compiled = CompileGame(
      ShippedTable(),
      {"define game <G>", "  msg <a b>", "weird<word>", "define text <t>", "  x", "end define"},
      problems);
  ASSERT_TRUE(problems.empty());
  TempDir dir;
  TestGame t(dir);
  t.game.keywords = ShippedTable();
  for (std::size_t length = 0; length <= compiled.size(); ++length) {
    Lines lines;
    EXPECT_EQ(ReadCompiledGame(t.game, std::string_view(compiled).substr(0, length), lines),
              length >= 7);
  }
}

TEST(CompiledGameReader, StopsAtTheLineLimit) {
  TempDir dir;
  TestGame t(dir);
  t.game.keywords = SmallTable();
  std::string bytes = std::string("TCGF001\0", 8) + std::string(1 << 20, '\x01');
  EXPECT_EQ(Read(t, bytes).size(), static_cast<std::size_t>(kMaxGameLines) + 1);
  const std::string path = dir.Write("big.cgw", bytes);
  EXPECT_FALSE(ReadGameFile(t.game, path));
  EXPECT_EQ(t.host.log.back(),
            "Error: The game has more than 32767 lines, the most a game can hold.");
}

TEST(CompiledGameWriter, WritesGamesThatReadBackAsTheSameLines) {
  const Lines source = {
      "' A compiled game keeps its comments.",
      "define game <Café Noir>",
      "    gwl-version <217>",
      "  startscript msg <Two  blanks, and a ; inside>   ",
      "  if got <key> then msg <Yes> else msg <No>",
      "MSG <capitals stay>",
      "odd<spacing>here",
      "msg  <two blanks before>",
      "msg <a>b",
      "",
      "  !include <lib.gwl>",
      "end define",
      "define text <intro>",
      "    Indented text keeps its blanks.",
      "",
      "  <b>Brackets</b> and | bars |",
      "end define",
      "define text <empty>",
      "end define",
  };
  std::vector<std::string> problems;
  const std::string compiled = CompileGame(ShippedTable(), source, problems);
  ASSERT_TRUE(problems.empty()) << problems.front();
  EXPECT_EQ(compiled.substr(0, 7), "TCGF001");

  TempDir dir;
  TestGame t(dir);
  t.game.keywords = ShippedTable();
  Lines expected;
  for (std::size_t i = 0; i < source.size(); ++i) {
    const bool in_text = i >= 13 && i <= 15;
    expected.push_back(in_text ? source[i] : Trim(source[i]));
  }
  EXPECT_EQ(Read(t, compiled), expected);
  // Keywords are stored as single bytes, not spelt out.
  EXPECT_EQ(compiled.find("startscript"), std::string::npos);
  EXPECT_EQ(compiled.find("gwl-version"), std::string::npos);
}

TEST(CompiledGameWriter, ReportsCharactersItCannotStore) {
  std::vector<std::string> problems;
  CompileGame(ShippedTable(), {"msg <snowman ☃>", "msg þorn", "msg <ÿ>"}, problems);
  EXPECT_EQ(problems, (Lines{"Error: Line 1 holds a character that a compiled game cannot store: "
                             "msg <snowman ☃>",
                             "Error: Line 2 holds the character 'þ', which a compiled game cannot "
                             "store there.",
                             "Error: Line 3 holds the character 'ÿ', which a compiled game cannot "
                             "store there."}));
}

}  // namespace
}  // namespace tarve
