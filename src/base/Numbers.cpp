// The number rules of the game language. Numbers are read and written by hand and through
// std::from_chars / std::to_chars, never through the C library's locale-dependent routines, so
// the decimal point is always ".".
#include "base/Numbers.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace tarve {

namespace {

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

inline bool IsSkippedInNumber(char c) { return c == ' ' || c == '\t' || c == '\n'; }

// The magnitude that a number too large or too small for a double stands for: it runs to
// infinity when its leading digit lies above the decimal point, and to zero otherwise.
double OutOfRangeValue(std::string_view digits, std::size_t point, long exponent, bool negative) {
  const std::size_t first = digits.find_first_not_of('0');
  if (first == std::string_view::npos) return 0.0;
  const long leading = static_cast<long>(point) - static_cast<long>(first) - 1;
  const long magnitude = leading + exponent;
  if (magnitude < 0) return negative ? -0.0 : 0.0;
  return negative ? -std::numeric_limits<double>::infinity()
                  : std::numeric_limits<double>::infinity();
}

}  // namespace

double Val(std::string_view text) {
  // Most numbers a game reads are short whole numbers ("42", "-5"): read those directly.
  {
    std::size_t pos = (!text.empty() && (text[0] == '-' || text[0] == '+')) ? 1 : 0;
    const std::size_t digits_from = pos;
    long whole = 0;
    while (pos < text.size() && pos - digits_from < 15 && IsDigit(text[pos])) {
      whole = whole * 10 + (text[pos] - '0');
      ++pos;
    }
    const bool ends_here =
        pos == text.size() || (!IsDigit(text[pos]) && !IsSkippedInNumber(text[pos]) &&
                               text[pos] != '.' && text[pos] != 'e' && text[pos] != 'E');
    if (pos > digits_from && ends_here) {
      return text[0] == '-' ? -static_cast<double>(whole) : static_cast<double>(whole);
    }
  }
  // Collect the number's characters with the skipped blanks removed, then convert once.
  std::string mantissa;  // digits only
  std::size_t point = std::string::npos;
  bool negative = false;
  std::string exponent_digits;
  bool exponent_negative = false;

  enum class Stage { kSign, kMantissa, kExponentSign, kExponentDigits };
  Stage stage = Stage::kSign;
  bool has_exponent_mark = false;
  for (const char c : text) {
    if (IsSkippedInNumber(c)) continue;
    if (stage == Stage::kSign) {
      stage = Stage::kMantissa;
      if (c == '-' || c == '+') {
        negative = c == '-';
        continue;
      }
    }
    if (stage == Stage::kMantissa) {
      if (IsDigit(c)) {
        mantissa.push_back(c);
        continue;
      }
      if (c == '.' && point == std::string::npos) {
        point = mantissa.size();
        continue;
      }
      if ((c == 'e' || c == 'E') && !mantissa.empty()) {
        has_exponent_mark = true;
        stage = Stage::kExponentSign;
        continue;
      }
      break;
    }
    if (stage == Stage::kExponentSign) {
      stage = Stage::kExponentDigits;
      if (c == '-' || c == '+') {
        exponent_negative = c == '-';
        continue;
      }
    }
    if (IsDigit(c)) {
      exponent_digits.push_back(c);
      continue;
    }
    break;
  }
  if (mantissa.empty()) return 0.0;
  if (point == std::string::npos) point = mantissa.size();

  // An exponent mark without digits ("1e", "1e+") adds nothing.
  long exponent = 0;
  if (has_exponent_mark && !exponent_digits.empty()) {
    // Cap the exponent: past a few thousand every value is already zero or infinite.
    for (const char d : exponent_digits) {
      exponent = exponent * 10 + (d - '0');
      if (exponent > 100000) {
        exponent = 100000;
        break;
      }
    }
    if (exponent_negative) exponent = -exponent;
  }

  std::string buffer;
  buffer.reserve(mantissa.size() + 24);
  buffer.append(mantissa, 0, point);
  if (point == 0) buffer.push_back('0');
  if (point < mantissa.size()) {
    buffer.push_back('.');
    buffer.append(mantissa, point, std::string::npos);
  }
  if (exponent != 0) {
    buffer.push_back('e');
    buffer.append(std::to_string(exponent));
  }
  double value = 0.0;
  const auto [end, error] = std::from_chars(buffer.data(), buffer.data() + buffer.size(), value);
  (void)end;
  if (error == std::errc::result_out_of_range) {
    return OutOfRangeValue(mantissa, point, exponent, negative);
  }
  if (error != std::errc()) return 0.0;
  return negative ? -value : value;
}

std::optional<int16_t> ToInt16(double value) {
  if (!std::isfinite(value) || value < -32769.0 || value > 32768.0) return std::nullopt;
  double whole = std::floor(value);
  const double fraction = value - whole;
  if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2.0) != 0.0)) whole += 1.0;
  if (whole < -32768.0 || whole > 32767.0) return std::nullopt;
  return static_cast<int16_t>(whole);
}

bool IsNumeric(std::string_view text) {
  std::size_t pos = text.find_first_not_of(' ');
  if (pos == std::string_view::npos) return false;
  const std::size_t last = text.find_last_not_of(' ');
  text = text.substr(pos, last - pos + 1);
  pos = 0;
  if (text[pos] == '+' || text[pos] == '-') ++pos;
  bool has_digit = false;
  bool has_point = false;
  for (; pos < text.size(); ++pos) {
    if (IsDigit(text[pos])) {
      has_digit = true;
    } else if (text[pos] == '.' && !has_point) {
      has_point = true;
    } else {
      break;
    }
  }
  if (!has_digit) return false;
  if (pos == text.size()) return true;
  if (text[pos] != 'e' && text[pos] != 'E') return false;
  ++pos;
  if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) ++pos;
  if (pos == text.size()) return false;
  for (; pos < text.size(); ++pos) {
    if (!IsDigit(text[pos])) return false;
  }
  return true;
}

std::string FormatSingle(float value) {
  if (!std::isfinite(value) || value == 0.0f) return "0";

  // Find the fewest significant digits (up to seven) that read back as the same number.
  char buffer[64];
  std::to_chars_result written{};
  for (int precision = 0; precision < 7; ++precision) {
    written = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific,
                            precision);
    float back = 0.0f;
    std::from_chars(buffer, written.ptr, back);
    if (back == value) break;
  }
  // buffer holds "[-]d[.ddd]e[+-]xx"
  const std::string_view scientific(buffer, static_cast<std::size_t>(written.ptr - buffer));
  const std::size_t mark = scientific.find('e');
  const int exponent = std::atoi(std::string(scientific.substr(mark + 1)).c_str());
  const bool negative = scientific[0] == '-';
  std::string digits;
  for (const char c : scientific.substr(0, mark)) {
    if (IsDigit(c)) digits.push_back(c);
  }
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();

  std::string out = negative ? "-" : "";
  if (exponent >= -5 && exponent < 7) {
    if (exponent < 0) {
      out += "0.";
      out.append(static_cast<std::size_t>(-exponent - 1), '0');
      out += digits;
    } else {
      const auto int_digits = static_cast<std::size_t>(exponent) + 1;
      if (digits.size() <= int_digits) {
        out += digits;
        out.append(int_digits - digits.size(), '0');
      } else {
        out.append(digits, 0, int_digits);
        out.push_back('.');
        out.append(digits, int_digits, std::string::npos);
      }
    }
    return out;
  }
  out.push_back(digits[0]);
  if (digits.size() > 1) {
    out.push_back('.');
    out.append(digits, 1, std::string::npos);
  }
  out.push_back('E');
  out.push_back(exponent < 0 ? '-' : '+');
  const int magnitude = exponent < 0 ? -exponent : exponent;
  if (magnitude < 10) out.push_back('0');
  out += std::to_string(magnitude);
  return out;
}

std::string FormatSingleSigned(float value) {
  std::string text = FormatSingle(value);
  if (text[0] != '-') text.insert(text.begin(), ' ');
  return text;
}

std::string FormatIntSigned(long value) {
  std::string text = std::to_string(value);
  if (value >= 0) text.insert(text.begin(), ' ');
  return text;
}

}  // namespace tarve
