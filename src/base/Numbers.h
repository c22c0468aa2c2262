// The number rules of the game language: reading the leading number of a text, 16-bit integer
// conversion with banker's rounding, single-precision number text, and the leading-blank form
// in which the player writes numbers into saved games and "ver".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarve {

// The leading numeric part of `text`, the way the game language reads numbers: blanks, tabs and
// line feeds are skipped wherever they stand, then an optional sign, digits with at most one
// decimal point, and an optional exponent ("1e3", "2.5E-2"). The first character that cannot
// continue the number ends it. Text with no digits reads as 0.
double Val(std::string_view text);

// Rounds to the nearest whole number, halves to even (2.5 -> 2, 3.5 -> 4, -2.5 -> -2), and
// gives nothing when the result does not fit a signed 16-bit integer.
std::optional<int16_t> ToInt16(double value);

// True when `text` is numeric text: after surrounding blanks, an optional sign, digits with at
// most one decimal point (at least one digit), and an optional exponent, with nothing after it.
bool IsNumeric(std::string_view text);

// The shortest decimal text (at most 7 significant digits) that reads back as the same
// single-precision number: 2.5 -> "2.5", 0.1 -> "0.1", 3 -> "3", -7.25 -> "-7.25". Very large
// and very small magnitudes use exponent form ("1.234568E+07", "1E-07").
std::string FormatSingle(float value);

// The same text with a leading blank when the value is not negative (" 5", "-3", " 2.5"), as
// the player writes numbers into saved games and the "ver" line.
std::string FormatSingleSigned(float value);
std::string FormatIntSigned(long value);

}  // namespace tarve
