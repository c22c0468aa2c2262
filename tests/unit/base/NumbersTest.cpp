#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "base/Numbers.h"

namespace tarve {
namespace {

TEST(Numbers, ValReadsTheLeadingNumber) {
  EXPECT_DOUBLE_EQ(Val("42"), 42.0);
  EXPECT_DOUBLE_EQ(Val("  -3.5abc"), -3.5);
  EXPECT_DOUBLE_EQ(Val("+4"), 4.0);
  EXPECT_DOUBLE_EQ(Val(".5"), 0.5);
  EXPECT_DOUBLE_EQ(Val("-.25"), -0.25);
  EXPECT_DOUBLE_EQ(Val("7."), 7.0);
  EXPECT_DOUBLE_EQ(Val("2.5.1"), 2.5);
  EXPECT_DOUBLE_EQ(Val("2+3*4"), 2.0);
  EXPECT_DOUBLE_EQ(Val("1,000"), 1.0);
  EXPECT_DOUBLE_EQ(Val("007"), 7.0);
  EXPECT_DOUBLE_EQ(Val("0.1"), 0.1);
}

TEST(Numbers, ValSkipsBlanksTabsAndLineFeedsAnywhere) {
  EXPECT_DOUBLE_EQ(Val("1 2"), 12.0);
  EXPECT_DOUBLE_EQ(Val("\t- 1\n5 . 5"), -15.5);
  EXPECT_DOUBLE_EQ(Val("1 e 2"), 100.0);
  // A carriage return is not skipped.
  EXPECT_DOUBLE_EQ(Val("1\r2"), 1.0);
}

TEST(Numbers, ValGivesZeroWithoutDigits) {
  EXPECT_EQ(Val("abc"), 0.0);
  EXPECT_EQ(Val(""), 0.0);
  EXPECT_EQ(Val("-"), 0.0);
  EXPECT_EQ(Val("."), 0.0);
  EXPECT_EQ(Val("--3"), 0.0);
  EXPECT_EQ(Val("e3"), 0.0);
}

TEST(Numbers, ValReadsExponents) {
  EXPECT_DOUBLE_EQ(Val("1e3"), 1000.0);
  EXPECT_DOUBLE_EQ(Val("2.5E-2"), 0.025);
  EXPECT_DOUBLE_EQ(Val("3e+2x"), 300.0);
  EXPECT_DOUBLE_EQ(Val("1e"), 1.0);
  EXPECT_DOUBLE_EQ(Val("1e+"), 1.0);
  EXPECT_DOUBLE_EQ(Val("1e-x"), 1.0);
  EXPECT_DOUBLE_EQ(Val("1e2e3"), 100.0);
  // Numbers beyond a double run to infinity or to zero, never to a crash.
  EXPECT_EQ(Val("1e999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(Val("-1e999"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(Val("1e-999"), 0.0);
  EXPECT_EQ(Val("1e99999999999999999999999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(Val("0e99999"), 0.0);
}

TEST(Numbers, ToInt16RoundsHalfToEven) {
  EXPECT_EQ(ToInt16(2.5), 2);
  EXPECT_EQ(ToInt16(3.5), 4);
  EXPECT_EQ(ToInt16(-2.5), -2);
  EXPECT_EQ(ToInt16(-3.5), -4);
  EXPECT_EQ(ToInt16(2.4999), 2);
  EXPECT_EQ(ToInt16(2.5001), 3);
  EXPECT_EQ(ToInt16(-0.4), 0);
  EXPECT_EQ(ToInt16(0.5), 0);
  EXPECT_EQ(ToInt16(1.5), 2);
  // Quotients computed as single-precision reals.
  EXPECT_EQ(ToInt16(7 / 2.0f), 4);
  EXPECT_EQ(ToInt16(5 / 2.0f), 2);
  EXPECT_EQ(ToInt16(-7 / 2.0f), -4);
}

TEST(Numbers, ToInt16GivesNothingOutsideSixteenBits) {
  EXPECT_EQ(ToInt16(32767.0), 32767);
  EXPECT_EQ(ToInt16(32767.4), 32767);
  EXPECT_EQ(ToInt16(32767.5), std::nullopt);
  EXPECT_EQ(ToInt16(32768.0), std::nullopt);
  EXPECT_EQ(ToInt16(-32768.0), -32768);
  EXPECT_EQ(ToInt16(-32768.4), -32768);
  EXPECT_EQ(ToInt16(-32768.5), -32768);
  EXPECT_EQ(ToInt16(-32768.6), std::nullopt);
  EXPECT_EQ(ToInt16(1e10), std::nullopt);
  EXPECT_EQ(ToInt16(std::numeric_limits<double>::infinity()), std::nullopt);
  EXPECT_EQ(ToInt16(-std::numeric_limits<double>::infinity()), std::nullopt);
  EXPECT_EQ(ToInt16(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
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

TEST(Numbers, FormatSingleGivesShortestText) {
  EXPECT_EQ(FormatSingle(2.5f), "2.5");
  EXPECT_EQ(FormatSingle(0.1f), "0.1");
  EXPECT_EQ(FormatSingle(3.0f), "3");
  EXPECT_EQ(FormatSingle(-7.25f), "-7.25");
  EXPECT_EQ(FormatSingle(1 / 3.0f), "0.3333333");
  EXPECT_EQ(FormatSingle(2 / 3.0f), "0.6666667");
  EXPECT_EQ(FormatSingle(8.25f), "8.25");
  EXPECT_EQ(FormatSingle(100.0f), "100");
  EXPECT_EQ(FormatSingle(-32768.0f), "-32768");
  EXPECT_EQ(FormatSingle(0.0f), "0");
  EXPECT_EQ(FormatSingle(-0.0f), "0");
  EXPECT_EQ(FormatSingle(1.1f + 2.2f), "3.3");
}

TEST(Numbers, FormatSingleUsesExponentFormForExtremeMagnitudes) {
  EXPECT_EQ(FormatSingle(1234567.0f), "1234567");
  EXPECT_EQ(FormatSingle(12345678.0f), "1.234568E+07");
  EXPECT_EQ(FormatSingle(10000000.0f), "1E+07");
  EXPECT_EQ(FormatSingle(9999999.0f), "9999999");
  EXPECT_EQ(FormatSingle(1.5e10f), "1.5E+10");
  EXPECT_EQ(FormatSingle(-2e20f), "-2E+20");
  EXPECT_EQ(FormatSingle(3e38f), "3E+38");
  EXPECT_EQ(FormatSingle(0.00001f), "0.00001");
  EXPECT_EQ(FormatSingle(0.000123f), "0.000123");
  EXPECT_EQ(FormatSingle(0.000001f), "1E-06");
  EXPECT_EQ(FormatSingle(1e-7f), "1E-07");
  EXPECT_EQ(FormatSingle(-2.5e-30f), "-2.5E-30");
  // Values beyond every number still give text.
  EXPECT_FALSE(FormatSingle(std::numeric_limits<float>::infinity()).empty());
  EXPECT_FALSE(FormatSingle(std::numeric_limits<float>::quiet_NaN()).empty());
  EXPECT_FALSE(FormatSingle(std::numeric_limits<float>::denorm_min()).empty());
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

TEST(Numbers, SignedFormsLeadWithABlankWhenNotNegative) {
  EXPECT_EQ(FormatSingleSigned(5.0f), " 5");
  EXPECT_EQ(FormatSingleSigned(2.5f), " 2.5");
  EXPECT_EQ(FormatSingleSigned(-3.0f), "-3");
  EXPECT_EQ(FormatSingleSigned(0.0f), " 0");
  EXPECT_EQ(FormatSingleSigned(-0.0f), " 0");
  EXPECT_EQ(FormatIntSigned(200), " 200");
  EXPECT_EQ(FormatIntSigned(0), " 0");
  EXPECT_EQ(FormatIntSigned(-32767), "-32767");
}

}  // namespace
}  // namespace tarve
