#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/Text.h"

namespace tarve {
namespace {

TEST(Text, CaseMappingCoversUnicodeSimpleMappings) {
  EXPECT_EQ(LCase("Open The DOOR"), "open the door");
  EXPECT_EQ(UCase("open the door 42!"), "OPEN THE DOOR 42!");
  EXPECT_EQ(LCase("Éclair"), "éclair");
  EXPECT_EQ(UCase("éclair"), "ÉCLAIR");
  EXPECT_EQ(LCase("ΑΘΗΝΑ"), "αθηνα");
  EXPECT_EQ(UCase("привет"), "ПРИВЕТ");
  // Simple mappings are one character to one: sharp s has no single upper-case letter.
  EXPECT_EQ(UCase("straße"), "STRAßE");
  // ASCII text after a non-ASCII character is still mapped.
  EXPECT_EQ(LCase("ÀB CD"), "àb cd");
  EXPECT_EQ(LCase(""), "");
}

TEST(Text, InvalidBytesSurviveCaseMappingUnchanged) {
  EXPECT_EQ(LCase("A\xFF"
                  "B\xC3"),
            "a\xFF"
            "b\xC3");
  EXPECT_EQ(UCase("\x80x\xE2\x82"), "\x80X\xE2\x82");
  EXPECT_EQ(CharCount("a\xFF"
                      "b"),
            3u);
  // A truncated sequence counts each of its bytes as a character.
  EXPECT_EQ(CharCount("\xE2\x82"), 2u);
  EXPECT_EQ(CharMid("a\xFF"
                    "bc",
                    3, 1),
            "b");
}

TEST(Text, ComparisonsIgnoreCaseAcrossUnicode) {
  EXPECT_TRUE(EqualsNoCase("Lamp", "lAMP"));
  EXPECT_TRUE(EqualsNoCase("ÉCLAIR", "éclair"));
  EXPECT_FALSE(EqualsNoCase("lamp", "lamps"));
  EXPECT_FALSE(EqualsNoCase("lamps", "lamp"));
  EXPECT_FALSE(EqualsNoCase("éclair", "eclair"));
  EXPECT_TRUE(EqualsNoCase("", ""));
  // The Kelvin sign lower-cases to an ASCII k although it takes three bytes.
  EXPECT_TRUE(
      EqualsNoCase("\xE2\x84\xAA"
                   "ey",
                   "key"));

  EXPECT_TRUE(StartsWithNoCase("DEFINE room <Hall>", "define "));
  EXPECT_TRUE(StartsWithNoCase("Ärger", "ä"));
  EXPECT_FALSE(StartsWithNoCase("  define", "define"));
  EXPECT_FALSE(StartsWithNoCase("def", "define"));
  EXPECT_TRUE(StartsWithNoCase("anything", ""));
}

TEST(Text, FindNoCaseGivesBytePositions) {
  EXPECT_EQ(FindNoCase("Take the LAMP", "lamp"), 9u);
  EXPECT_EQ(FindNoCase("lamp and lamp", "LAMP", 1), 9u);
  EXPECT_EQ(FindNoCase("lamp", "lamps"), std::string_view::npos);
  EXPECT_EQ(FindNoCase("abc", "", 2), 2u);
  EXPECT_EQ(FindNoCase("abc", "", 4), std::string_view::npos);
  EXPECT_EQ(FindNoCase("abc", "c", 7), std::string_view::npos);
  // "é" takes two bytes, so the match starts at byte 6.
  EXPECT_EQ(FindNoCase("café CRÈME", "crème"), 6u);
  EXPECT_EQ(FindNoCase("ÉTÉ été", "ÉTÉ", 1), 6u);
}

TEST(Text, TrimmingRemovesBlanksOnly) {
  EXPECT_EQ(Trim("  hello world  "), "hello world");
  EXPECT_EQ(Trim("\thello\t"), "\thello\t");
  EXPECT_EQ(Trim("    "), "");
  EXPECT_EQ(TrimLeftView("  a b  "), "a b  ");
  EXPECT_EQ(TrimRightView("  a b  "), "  a b");
  EXPECT_EQ(TrimView(""), "");
}

TEST(Text, CountsAndCutsAreInCharacters) {
  EXPECT_EQ(CharCount("héllo"), 5u);
  EXPECT_EQ(CharCount("€"), 1u);
  EXPECT_EQ(CharCount(""), 0u);
  EXPECT_EQ(ByteOffsetOfChar("héllo", 2), 3u);
  EXPECT_EQ(ByteOffsetOfChar("héllo", 99), 6u);

  EXPECT_EQ(CharLeft("héllo", 2), "hé");
  EXPECT_EQ(CharLeft("héllo", 9), "héllo");
  EXPECT_EQ(CharLeft("héllo", 0), "");
  EXPECT_EQ(CharRight("naïve", 3), "ïve");
  EXPECT_EQ(CharRight("naïve", 9), "naïve");
  EXPECT_EQ(CharRight("naïve", 0), "");

  EXPECT_EQ(CharMid("crème brûlée", 7, 4), "brûl");
  EXPECT_EQ(CharMid("crème brûlée", 7), "brûlée");
  EXPECT_EQ(CharMid("abc", 0, 2), "ab");
  EXPECT_EQ(CharMid("abc", 3, 10), "c");
  EXPECT_EQ(CharMid("abc", 4, 1), "");
  EXPECT_EQ(CharMid("abc", 4), "");
  EXPECT_EQ(CharMid("abc", 2, 0), "");
}

TEST(Text, CharInStrCountsCharactersFromOne) {
  EXPECT_EQ(CharInStr("hello world", "o"), 5u);
  EXPECT_EQ(CharInStr("hello world", "o", 6), 8u);
  EXPECT_EQ(CharInStr("hello world", "O"), 0u);  // exact comparison
  EXPECT_EQ(CharInStr("hello", "x"), 0u);
  EXPECT_EQ(CharInStr("hello", "l", 0), 3u);
  EXPECT_EQ(CharInStr("hello", "o", 6), 0u);
  EXPECT_EQ(CharInStr("hello", "o", 50), 0u);
  EXPECT_EQ(CharInStr("éèê ê", "ê"), 3u);
  EXPECT_EQ(CharInStr("éèê ê", "ê", 4), 5u);
  // An empty search text is found where the search starts, up to one past the end.
  EXPECT_EQ(CharInStr("héllo", "", 3), 3u);
  EXPECT_EQ(CharInStr("héllo", "", 6), 6u);
  EXPECT_EQ(CharInStr("héllo", "", 7), 0u);
  // A byte match that starts or ends inside a character is no match ("é" is C3 A9).
  EXPECT_EQ(CharInStr("é\xA9", "\xA9"), 2u);
  EXPECT_EQ(CharInStr("-é", "-\xC3"), 0u);
}

TEST(Text, Windows1252MapsEveryByte) {
  EXPECT_EQ(Windows1252ToUtf8('A'), "A");
  EXPECT_EQ(Windows1252ToUtf8(0x80), "€");
  EXPECT_EQ(Windows1252ToUtf8(0x8A), "Š");
  EXPECT_EQ(Windows1252ToUtf8(0x93), "\u201C");
  EXPECT_EQ(Windows1252ToUtf8(0x9F), "Ÿ");
  EXPECT_EQ(Windows1252ToUtf8(0xE9), "é");
  EXPECT_EQ(Windows1252ToUtf8(0xA0), "\u00A0");
  EXPECT_EQ(Windows1252ToUtf8(0x81), "\u0081");
  EXPECT_EQ(Windows1252ToUtf8(0x9D), "\u009D");

  // Every byte survives a round trip through UTF-8.
  for (int byte = 0; byte < 256; ++byte) {
    const auto back = Utf8ToWindows1252(Windows1252ToUtf8(static_cast<unsigned char>(byte)));
    ASSERT_TRUE(back.has_value()) << byte;
    EXPECT_EQ(*back, std::string(1, static_cast<char>(byte))) << byte;
  }
  EXPECT_EQ(Utf8ToWindows1252("café €5"), std::string("caf\xE9 \x80"
                                                      "5"));
  EXPECT_EQ(Utf8ToWindows1252("日本"), std::nullopt);
  EXPECT_EQ(Utf8ToWindows1252("\u0080"), std::nullopt);
  EXPECT_EQ(Utf8ToWindows1252("a\xFF"), std::nullopt);
}

TEST(Text, ValidUtf8IsRecognised) {
  EXPECT_TRUE(IsValidUtf8(""));
  EXPECT_TRUE(IsValidUtf8("plain"));
  EXPECT_TRUE(IsValidUtf8("café € 😀"));
  EXPECT_TRUE(IsValidUtf8(std::string("a\0b", 3)));
  EXPECT_FALSE(IsValidUtf8("caf\xE9"));
  EXPECT_FALSE(IsValidUtf8("\xC3"));              // truncated
  EXPECT_FALSE(IsValidUtf8("\xC0\xAF"));          // overlong
  EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));      // surrogate
  EXPECT_FALSE(IsValidUtf8("\xF4\x90\x80\x80"));  // past U+10FFFF
}

TEST(Text, GameTextIsUtf8OrElseWindows1252) {
  EXPECT_EQ(DecodeGameText("café"), "café");
  EXPECT_EQ(DecodeGameText("caf\xE9"), "café");
  EXPECT_EQ(DecodeGameText("\x80"), "€");
  EXPECT_EQ(DecodeGameText("\x93quoted\x94 \x85"), "\u201Cquoted\u201D \u2026");
  // One invalid byte makes the whole file Windows-1252, even its valid-looking sequences.
  EXPECT_EQ(DecodeGameText("\xC3\xA9 \xE9"), "Ã© é");
  EXPECT_EQ(DecodeGameText("\xEF\xBB\xBF"
                           "define game <x>"),
            "define game <x>");
  EXPECT_EQ(DecodeGameText("\xEF\xBB\xBF"
                           "caf\xE9"),
            "café");
  EXPECT_EQ(DecodeGameText(""), "");
  EXPECT_EQ(DecodeGameText("\xEF\xBB\xBF"), "");
}

TEST(Text, SplitLinesAcceptsAllLineEnds) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(SplitLines("a\r\nb\nc\rd"), (Lines{"a", "b", "c", "d"}));
  EXPECT_EQ(SplitLines("a\r\n"), (Lines{"a"}));
  EXPECT_EQ(SplitLines("a\n\nb\n"), (Lines{"a", "", "b"}));
  EXPECT_EQ(SplitLines("a\r\rb"), (Lines{"a", "", "b"}));
  EXPECT_EQ(SplitLines("a\n\r"), (Lines{"a", ""}));
  EXPECT_EQ(SplitLines("\n"), (Lines{""}));
  EXPECT_EQ(SplitLines("no end"), (Lines{"no end"}));
  EXPECT_EQ(SplitLines(""), Lines{});
}

TEST(Text, ExpandTabsGivesFourBlanksPerTab) {
  EXPECT_EQ(ExpandTabs("\tmsg <a\tb>"), "    msg <a    b>");
  EXPECT_EQ(ExpandTabs("\t\t"), "        ");
  EXPECT_EQ(ExpandTabs("none"), "none");
}

}  // namespace
}  // namespace tarve
