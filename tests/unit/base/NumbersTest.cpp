#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "base/Numbers.h"

namespace tarve {
namespace {

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

TEST(Numbers, FormattedSinglesReadBackAsTheSameNumber) {
  for (const float value : {0.1f, 0.7f, 123.456f, -98765.43f, 1e-3f, 5e6f, 3.4e38f}) {
    EXPECT_EQ(static_cast<float>(Val(FormatSingle(value))), value) << FormatSingle(value);
  }
  // Numbers that need more than seven digits come back within the seventh digit.
  for (const float value : {1 / 3.0f, 16777215.0f, -1.2345678e-20f, 1.17549435e-38f}) {
    const double back = Val(FormatSingle(value));
    EXPECT_NEAR(back, value, std::fabs(value) * 5e-7) << FormatSingle(value);
  }
}

}  // namespace
}  // namespace tarve
