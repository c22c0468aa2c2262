#include <gtest/gtest.h>

#include "script/CompiledGame.h"
#include "script/GameReader.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using namespace std::string_literals;
using Lines = std::vector<std::string>;

// A game with the shipped keyword table or a small hand-made one: !cr 1, !quote 2, !unknown 3,
// msg 10, room 11, define 12, text 13, end 14.
struct Reader {
  explicit Reader(bool shipped = false) {
    std::vector<std::string> problems;
    t.game.keywords = ParseKeywordTable(
        "!cr;1, !quote;2, !unknown;3, msg;10, room;11, define;12, text;13, end;14", problems);
    t.game.program_folder = TARVE_SOURCE_DATA;
    EXPECT_TRUE(!shipped || (LoadKeywordTable(t.game) && t.host.log.empty()));
  }
  Lines Read(std::string_view bytes) {
    Lines lines;
    ReadCompiledGame(t.game, bytes, lines);
    return lines;
  }
  test::TempDir dir;
  test::TestGame t{dir};
};

TEST(KeywordTable, ReadsFieldsReportsBadCodesAndKeepsTheMarkerCodesFree) {
  std::vector<std::string> problems;
  const KeywordTable table = ParseKeywordTable(
      "#comment, msg ; 10, look;300, nocode, \"say;11\"\r\ngive;10.5, room;12", problems);
  EXPECT_EQ(Lines(&table.entries[10], &table.entries[13]), (Lines{"msg", "say", "room"}));
  EXPECT_EQ(table.CodeOf("look"), -1);
  EXPECT_EQ(problems, (Lines{"Error: tarve.dat entry 'look;300' has a code outside 0 to 255; it "
                             "is ignored.",
                             "Warning: tarve.dat entry 'nocode' has no code; it is ignored.",
                             problems.back()}));
  const KeywordTable shipped = Reader(true).t.game.keywords;
  for (const char* entry : {"!cr", "!quote", "!unknown"}) EXPECT_GE(shipped.CodeOf(entry), 0);
  for (int code : {0, 253, 254}) EXPECT_EQ(shipped.entries[code], "") << code;
}

TEST(KeywordTable, AnEmptyOrMissingTableCannotWriteOrOpenCompiledGames) {
  std::vector<std::string> problems;
  Reader r;
  r.t.game.keywords = ParseKeywordTable("", problems);
  EXPECT_TRUE(r.t.game.keywords.loaded);
  CompileGame(r.t.game.keywords, {"msg <x>"}, problems);
  EXPECT_EQ(problems, (Lines{"Error: The keyword table lacks the !cr, !quote or !unknown entry."}));
  // Every byte is a code without an entry: one line of blanks.
  EXPECT_EQ(r.Read("TCGF001\0\x01\x02\x00\xFE\xFD"s), (Lines{""}));

  r.t.game.program_folder = r.dir.path();
  EXPECT_FALSE(LoadKeywordTable(r.t.game));
  EXPECT_EQ(r.t.host.log.back(), "Warning: Unable to read " + r.dir.path() +
                                     "/tarve.dat; compiled games cannot be opened.");
  EXPECT_FALSE(ReadGameFile(r.t.game, r.dir.Write("game.cgw", "TCGF001\0"s)));
  EXPECT_EQ(r.t.host.log.back(),
            "Error: Compiled games cannot be opened without the keyword table tarve.dat.");
}

TEST(CompiledGameReader, DecodesTokensQuotesLiteralsAndTextBlocks) {
  EXPECT_EQ(
      Reader().Read("TCGF001\x7F"s + "\x0C\x0B\x02\xB7\x8E\x00\x01"s +  // define room <Hq>
                    "\x0A\x03"s + "Caf\xE9!\xFE\x01"s +                 // msg Café!
                    "\x0C\x0D\x02\x9E\x00\x01"s +                       // define text <a>
                    "\xDF\xDF\x97\x96\x00\x00\xB5\xFD"s +               // "  hi", "", "J"
                    "\x0E\x0C\x01"s),                                   // end define
      (Lines{"define room <Hq>", "msg Café!", "define text <a>", "  hi", "", "J", "end define"}));
}

TEST(CompiledGameReader, RejectsOtherFilesAndSurvivesDamage) {
  Reader r;
  Lines lines;
  EXPECT_FALSE(ReadCompiledGame(r.t.game, "TCGF002\0"s, lines));
  EXPECT_FALSE(ReadCompiledGame(r.t.game, "", lines));
  EXPECT_TRUE(ReadCompiledGame(r.t.game, "TCGF001\0"s, lines));
  EXPECT_TRUE(lines.empty());
  EXPECT_EQ(r.t.host.messages, Lines(2, "[Tarve] Invalid or corrupted file!"));
  // Unended quotes, literals and text blocks, and codes without an entry.
  EXPECT_EQ(r.Read("TCGF001\0\x0A\x02\xB7\x8E"s), (Lines{"msg <Hq>"}));
  EXPECT_EQ(r.Read("TCGF001\0\x03open"s), (Lines{"open"}));
  EXPECT_EQ(r.Read("TCGF001\0\x0A\x63\x0A\x01"s), (Lines{"msg  msg"}));
  EXPECT_EQ(r.Read("TCGF001\0\x0C\x0D\x01\x9E\x9E"s), (Lines{"define text", "aa"}));

  const std::string big = "TCGF001\0"s + std::string(1 << 20, '\x01');
  EXPECT_EQ(r.Read(big).size(), static_cast<std::size_t>(kMaxGameLines) + 1);  // then refused
}

TEST(CompiledGameReader, ReadsEveryTruncationOfAGameWithoutHarm) {
  Reader r(true);
  std::vector<std::string> problems;
  const std::string compiled = CompileGame(
      r.t.game.keywords,
      {"define game <G>", "  msg <a b>", "weird<word>", "define text <t>", "  x", "end define"},
      problems);
  for (std::size_t length = 0; length <= compiled.size(); ++length) {
    Lines lines;
    EXPECT_EQ(ReadCompiledGame(r.t.game, std::string_view(compiled).substr(0, length), lines),
              length >= 7);
  }
}

// Lines whose tokens would not join back to the same text are stored whole; every transcript's
// game is also replayed compiled, which shows the ordinary lines.
TEST(CompiledGameWriter, StoresOddLinesWholeAndReportsCharactersItCannotStore) {
  Reader r(true);
  const Lines source = {"odd<spacing>here", "msg  <two blanks>",       "msg <a>b",
                        "define text <t>",  "    <b>kept</b> | as is", "end define"};
  std::vector<std::string> problems;
  const std::string compiled = CompileGame(r.t.game.keywords, source, problems);
  EXPECT_TRUE(problems.empty());
  EXPECT_EQ(r.Read(compiled), source);
  EXPECT_EQ(compiled.find("define"), std::string::npos);  // keywords are stored as codes

  CompileGame(r.t.game.keywords, {"msg <snowman ☃>", "msg þorn", "msg <ÿ>"}, problems);
  EXPECT_EQ(problems, (Lines{"Error: Line 1 holds a character that a compiled game cannot store: "
                             "msg <snowman ☃>",
                             "Error: Line 2 holds the character 'þ', which a compiled game cannot "
                             "store there.",
                             "Error: Line 3 holds the character 'ÿ', which a compiled game cannot "
                             "store there."}));
}

}  // namespace
}  // namespace tarve
