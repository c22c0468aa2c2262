#include <gtest/gtest.h>

#include "script/CommonCode.h"
#include "script/CompiledGame.h"
#include "script/GameReader.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using namespace std::string_literals;
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
