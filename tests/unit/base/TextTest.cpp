#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Numbers.h"
#include "base/Text.h"

namespace tarve {
namespace {

using Pair = std::pair<std::string, std::string>;

// Octal escapes keep invalid bytes apart from the letters after them: "\377" is the byte FF.
TEST(Text, CaseMappingCoversUnicodeSimpleMappingsAndKeepsInvalidBytes) {
  for (const auto& [text, lower] : std::vector<Pair>{{"Open The DOOR", "open the door"},
                                                     {"ΑΘΗΝΑ", "αθηνα"},
                                                     {"ÀB CD", "àb cd"},  // ASCII after Unicode
                                                     {"A\377B\303", "a\377b\303"}}) {
    EXPECT_EQ(LCase(text), lower) << text;
  }
  // Simple mappings are one character to one: sharp s has no single upper-case letter.
  for (const auto& [text, upper] : std::vector<Pair>{{"open the door 42!", "OPEN THE DOOR 42!"},
                                                     {"straße", "STRAßE"},
                                                     {"\200x\342\202", "\200X\342\202"}}) {
    EXPECT_EQ(UCase(text), upper) << text;
  }
}

TEST(Text, ComparisonsIgnoreCaseAcrossUnicodeAndFindGivesBytePositions) {
  EXPECT_TRUE(EqualsNoCase("ÉCLAIR", "éclair"));
  EXPECT_FALSE(EqualsNoCase("lamp", "lamps"));
  EXPECT_FALSE(EqualsNoCase("éclair", "eclair"));
  // The Kelvin sign lower-cases to an ASCII k although it takes three bytes.
  EXPECT_TRUE(EqualsNoCase("\342\204\252ey", "key"));
  EXPECT_TRUE(StartsWithNoCase("Ärger", "ä"));
  EXPECT_FALSE(StartsWithNoCase("  define", "define"));
  EXPECT_FALSE(StartsWithNoCase("def", "define"));

  EXPECT_EQ(FindNoCase("lamp and lamp", "LAMP", 1), 9u);
  EXPECT_EQ(FindNoCase("lamp", "lamps"), std::string_view::npos);
  EXPECT_EQ(FindNoCase("abc", "", 2), 2u);
  EXPECT_EQ(FindNoCase("abc", "", 4), std::string_view::npos);
  EXPECT_EQ(FindNoCase("café CRÈME", "crème"), 6u);  // "é" takes two bytes
  EXPECT_EQ(FindNoCase("ÉTÉ été", "ÉTÉ", 1), 6u);
  EXPECT_EQ(Trim("\thello \t "), "\thello \t");  // blanks only
}

TEST(Text, CountsCutsAndSearchesAreInCharacters) {
  EXPECT_EQ(CharCount("héllo"), 5u);
  EXPECT_EQ(CharCount("a\377b"), 3u);
  EXPECT_EQ(CharCount("\342\202"), 2u);  // each byte of a truncated sequence is a character
  EXPECT_EQ(ByteOffsetOfChar("héllo", 2), 3u);
  EXPECT_EQ(ByteOffsetOfChar("héllo", 99), 6u);
  const std::vector<Pair> cuts = {
      {CharLeft("héllo", 2), "hé"},
      {CharLeft("héllo", 9), "héllo"},
      {CharRight("naïve", 3), "ïve"},
      {CharRight("naïve", 0), ""},
      {CharMid("crème brûlée", 7, 4), "brûl"},
      {CharMid("crème brûlée", 7), "brûlée"},
      {CharMid("abc", 3, 10), "c"},
      {CharMid("abc", 4, 1), ""},
      {CharMid("a\377bc", 3, 1), "b"},
  };
  for (const auto& [got, expected] : cuts) EXPECT_EQ(got, expected);

  EXPECT_EQ(CharInStr("hello world", "O"), 0u);  // exact comparison
  EXPECT_EQ(CharInStr("hello", "l", 0), 3u);
  EXPECT_EQ(CharInStr("hello", "o", 6), 0u);
  EXPECT_EQ(CharInStr("éèê ê", "ê", 4), 5u);
  // An empty search text is found where the search starts, up to one past the end.
  EXPECT_EQ(CharInStr("héllo", "", 6), 6u);
  EXPECT_EQ(CharInStr("héllo", "", 7), 0u);
  // A byte match that starts or ends inside a character is no match ("é" is C3 A9).
  EXPECT_EQ(CharInStr("é\251", "\251"), 2u);
  EXPECT_EQ(CharInStr("-é", "-\303"), 0u);
}

TEST(Text, Windows1252MapsEveryByteAndGameTextIsUtf8OrElseWindows1252) {
  EXPECT_EQ(Windows1252ToUtf8(0x80) + Windows1252ToUtf8(0x93) + Windows1252ToUtf8(0x9F) +
                Windows1252ToUtf8(0xE9) + Windows1252ToUtf8(0x81),
            "€\u201CŸé\u0081");
  // Every byte survives a round trip through UTF-8.
  for (int byte = 0; byte < 256; ++byte) {
    const auto back = Utf8ToWindows1252(Windows1252ToUtf8(static_cast<unsigned char>(byte)));
    ASSERT_TRUE(back.has_value()) << byte;
    EXPECT_EQ(*back, std::string(1, static_cast<char>(byte))) << byte;
  }
  EXPECT_EQ(Utf8ToWindows1252("café €5"), std::string("caf\351 \2005"));
  EXPECT_EQ(Utf8ToWindows1252("日本"), std::nullopt);
  EXPECT_EQ(Utf8ToWindows1252("a\377"), std::nullopt);

  EXPECT_TRUE(IsValidUtf8("café € 😀"));
  EXPECT_TRUE(IsValidUtf8(std::string("a\0b", 3)));
  for (const char* invalid : {"caf\351", "\303", "\300\257", "\355\240\200", "\364\220\200\200"}) {
    EXPECT_FALSE(IsValidUtf8(invalid)) << invalid;  // truncated, overlong, surrogate, too high
  }

  for (const auto& [bytes, text] : std::vector<Pair>{
           {"\223quoted\224 \205", "\u201Cquoted\u201D \u2026"},
           // One invalid byte makes the whole file Windows-1252, even its valid sequences.
           {"\303\251 \351", "Ã© é"},
           {"\357\273\277define game <x>", "define game <x>"},
           {"\357\273\277caf\351", "café"},
           {"\357\273\277", ""}}) {
    EXPECT_EQ(DecodeGameText(bytes), text) << bytes;
  }
}

TEST(Text, LinesSplitAtEveryLineEnd) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(SplitLines("a\r\nb\nc\rd"), (Lines{"a", "b", "c", "d"}));
  EXPECT_EQ(SplitLines("a\r\rb\n"), (Lines{"a", "", "b"}));
  EXPECT_EQ(SplitLines("a\n\r"), (Lines{"a", ""}));
  EXPECT_EQ(SplitLines(""), Lines{});
}

constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(Numbers, ValReadsTheLeadingNumberSkippingBlanksAnywhere) {
  const std::pair<const char*, double> cases[] = {
      {"  -3.5abc", -3.5},
      {"2.5.1", 2.5},
      {"\t- 1\n5 . 5", -15.5},
      {"1 e 2", 100},
      {"1\r2", 1},  // a carriage return is not skipped
      {".", 0},
      {"--3", 0},
      {"e3", 0},
      {"3e+2x", 300},
      {"1e2e3", 100},
      // Numbers beyond a double run to infinity or to zero, never to a crash.
      {"1e999", kInf},
      {"-1e999", -kInf},
      {"1e-999", 0},
      {"0e99999", 0},
      {"1e99999999999999999999999", kInf},
  };
  for (const auto& [text, value] : cases) EXPECT_DOUBLE_EQ(Val(text), value) << text;
}

TEST(Numbers, ToInt16RoundsHalfToEvenAndGivesNothingOutsideSixteenBits) {
  const std::pair<double, std::optional<int>> cases[] = {
      {2.5, 2},           {3.5, 4},
      {-2.5, -2},         {2.5001, 3},
      {32767.4, 32767},   {32767.5, {}},
      {-32768.5, -32768}, {-32768.6, {}},
      {kInf, {}},         {std::numeric_limits<double>::quiet_NaN(), {}},
  };
  for (const auto& [value, expected] : cases) {
    const std::optional<int16_t> got = ToInt16(value);
    EXPECT_EQ(got.has_value() ? std::optional<int>(*got) : std::nullopt, expected) << value;
  }
}

TEST(Numbers, IsNumericAcceptsOnlyWholeNumbers) {
  for (const char* text : {"5", " -3 ", "+2.5", ".5", "5.", "1e3", "2.5E-2", "1e+7", "007"}) {
    EXPECT_TRUE(IsNumeric(text)) << text;
  }
  for (const char* text :
       {"", "   ", "abc", "5a", "1.2.3", "-", ".", "+.", "1e", "1e+", "e3", "1 2", "--1", "- 1"}) {
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
}

TEST(Numbers, FormatSingleGivesTheShortestTextAndExponentsForExtremeMagnitudes) {
  const std::pair<float, const char*> cases[] = {
      {2.5f, "2.5"},        {2 / 3.0f, "0.6666667"},    {-0.0f, "0"},    {1.1f + 2.2f, "3.3"},
      {9999999, "9999999"}, {12345678, "1.234568E+07"}, {1e7f, "1E+07"}, {3e38f, "3E+38"},
      {1e-5f, "0.00001"},   {1e-6f, "1E-06"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(FormatSingle(value), text) << text;
  // Values beyond every number still give text.
  EXPECT_FALSE(FormatSingle(std::numeric_limits<float>::infinity()).empty());
  EXPECT_FALSE(FormatSingle(std::numeric_limits<float>::quiet_NaN()).empty());
  EXPECT_FALSE(FormatSingle(std::numeric_limits<float>::denorm_min()).empty());
  // The signed forms lead with a blank when not negative.
  EXPECT_EQ(FormatSingleSigned(2.5f) + FormatSingleSigned(-3) + FormatSingleSigned(-0.0f),
            " 2.5-3 0");
  EXPECT_EQ(FormatIntSigned(200) + FormatIntSigned(0) + FormatIntSigned(-32767), " 200 0-32767");
}

}  // namespace
}  // namespace tarve
