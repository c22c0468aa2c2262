// Variables live in two tables in order of creation (the order the viewers show them in), each
// with a hash index whose names compare without regard to case. Numeric values are kept as the
// decimal text of a 16-bit integer and read back as a number on every read, as the game
// language has always done.
#include "interpreter/Variables.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "output/Output.h"

namespace tarve {

namespace {

constexpr std::uint64_t kBytes01 = 0x0101010101010101ull;
constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
constexpr std::uint64_t kHashMultiplier = 0x9E3779B97F4A7C15ull;

// Up to eight bytes of `text` from `pos`, as one word (missing bytes are zero).
inline std::uint64_t LoadWord(std::string_view text, std::size_t pos) {
  std::uint64_t word = 0;
  if (text.size() - pos >= 8) {
    std::memcpy(&word, text.data() + pos, 8);
  } else {
    for (std::size_t i = pos; i < text.size(); ++i) {
      word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * (i - pos));
    }
  }
  return word;
}

// Lower-cases the ASCII letters of eight ASCII bytes at once: a byte from "A" to "Z" gets its
// 0x20 bit. No byte may have its high bit set.
inline std::uint64_t FoldAsciiWord(std::uint64_t word) {
  const std::uint64_t from_a = word + (0x80 - 'A') * kBytes01;      // high bit: byte >= 'A'
  const std::uint64_t past_z = word + (0x80 - 'Z' - 1) * kBytes01;  // high bit: byte > 'Z'
  return word | (((from_a & ~past_z) & kHighBits) >> 2);
}

inline std::uint64_t MixWord(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * kHashMultiplier;
  return hash ^ (hash >> 29);
}

bool IsAsciiText(std::string_view text) {
  for (std::size_t pos = 0; pos < text.size(); pos += 8) {
    if ((LoadWord(text, pos) & kHighBits) != 0) return false;
  }
  return true;
}

// The position of `wanted` in `text` from `from` on, or npos. Names and expressions are a few
// bytes long, where a plain loop costs less than setting up a library search.
inline std::size_t FindByte(std::string_view text, char wanted, std::size_t from = 0) {
  for (std::size_t pos = from; pos < text.size(); ++pos) {
    if (text[pos] == wanted) return pos;
  }
  return std::string_view::npos;
}

// Byte-for-byte equality of two texts: a plain loop decides short ones sooner than a library
// comparison, which is much the faster on long ones.
inline bool SameBytes(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  if (a.size() > 16) return std::memcmp(a.data(), b.data(), a.size()) == 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i]) return false;
  }
  return true;
}

// TrimView, inline: every setvar trims its name and its expression.
inline std::string_view TrimBlanks(std::string_view text) {
  std::size_t first = 0;
  std::size_t end = text.size();
  while (first < end && text[first] == ' ') ++first;
  while (end > first && text[end - 1] == ' ') --end;
  return text.substr(first, end - first);
}

constexpr std::size_t kNoRow = static_cast<std::size_t>(-1);

// The row of the variable `name`, or kNoRow; recent lookups are answered without the index.
std::size_t FindRow(const VariableTable& table, std::string_view name) {
  RecentVariable* recent = nullptr;
  if (!name.empty()) {
    recent = &table.recent[(name.size() + static_cast<unsigned char>(name.front()) * 3u +
                            static_cast<unsigned char>(name.back())) %
                           table.recent.size()];
    if (SameBytes(recent->name, name)) return recent->row;
  }
  const auto it = table.index.find(name);
  // A name not found is not remembered: the variable may be made later.
  if (it == table.index.end()) return kNoRow;
  if (recent != nullptr) {
    recent->name.assign(name);
    recent->row = it->second;
  }
  return it->second;
}

VariableEntry* FindEntry(VariableTable& table, std::string_view name) {
  const std::size_t row = FindRow(table, name);
  return row == kNoRow ? nullptr : &table.entries[row];
}

// Writes a variable and tells the viewer of its table about the changed row.
void WriteVariable(Game& game, VariableTable& table, VariableStore store, std::string_view name,
                   std::string_view value) {
  if (value.size() > kMaxVariableValueBytes) {
    value = LeftBytes(value, kMaxVariableValueBytes);
    LogScriptError(game, "Error: The value for variable '" + ShortenedForLog(name) +
                             "' is longer than " + std::to_string(kMaxVariableValueBytes) +
                             " bytes - the rest of it was cut off.");
  }
  const std::size_t found = FindRow(table, name);
  const std::size_t old_bytes = found == kNoRow ? 0
                                                : 2 * table.entries[found].name.size() +
                                                      table.entries[found].value.size() +
                                                      kVariableRecordBytes;
  const std::size_t new_bytes = 2 * name.size() + value.size() + kVariableRecordBytes;
  if (game.variables.bytes - old_bytes + new_bytes > kMaxVariablesBytes) {
    LogScriptError(game, "Error: The game's variables would hold more than " +
                             std::to_string(kMaxVariablesBytes) + " bytes - variable '" +
                             ShortenedForLog(name) + "' was not set.");
    return;
  }
  game.variables.bytes = game.variables.bytes - old_bytes + new_bytes;
  std::size_t row = 0;
  if (found != kNoRow) {
    row = found;
    VariableEntry& entry = table.entries[row];
    // The entry takes the spelling of the latest write, so the viewer shows it; a loop nearly
    // always writes the same spelling again.
    if (!SameBytes(entry.name, name)) entry.name.assign(name);
    if (entry.value.size() == value.size()) {
      // Same length, as a counter's value mostly is: overwritten in place.
      std::copy(value.begin(), value.end(), entry.value.begin());
    } else {
      entry.value.assign(value);
    }
  } else {
    row = table.entries.size();
    table.entries.push_back(VariableEntry{std::string(name), std::string(value)});
    table.index.emplace(LCase(name), row);
  }
  const VariableEntry& entry = table.entries[row];
  game.host.window.VariableViewerRow(static_cast<int>(store),
                                     static_cast<int>(table.entries.size()) + 1,
                                     static_cast<int>(row) + 1, entry.name, entry.value);
}

// Splits a setstring/setvar parameter at its first ";". A parameter without one has nowhere to
// say which variable is meant, so the statement is abandoned.
bool SplitAssignment(Game& game, std::string_view keyword, std::string_view parameter,
                     std::string_view& name, std::string_view& rest) {
  const std::size_t semicolon = FindByte(parameter, ';');
  if (semicolon == std::string_view::npos) {
    LogScriptError(game, "Error: Missing ';' in " + std::string(keyword) + " <" +
                             std::string(parameter) + "> - the variable was not changed.");
    return false;
  }
  name = TrimBlanks(parameter.substr(0, semicolon));
  rest = parameter.substr(semicolon + 1);
  return true;
}

void LogOverflow(Game& game, std::string_view parameter) {
  LogScriptError(game, "Error: Overflow in setvar <" + std::string(parameter) +
                           "> - the result is outside -32768 to 32767 and was not stored.");
}

std::optional<int16_t> FitInt16(int value) {
  if (value < -32768 || value > 32767) return std::nullopt;
  return static_cast<int16_t>(value);
}

// A number as the game language reads it, rounded to 16 bits. Plain whole numbers ("42", "-7"),
// which is nearly every number a script holds, are read directly.
std::optional<int16_t> ReadNumber(std::string_view text) {
  const bool negative = !text.empty() && text[0] == '-';
  const std::size_t digits = text.size() - (negative ? 1 : 0);
  if (digits >= 1 && digits <= 5) {
    const char* digit = text.data() + (negative ? 1 : 0);
    int value = 0;
    std::size_t i = 0;
    for (; i < digits; ++i) {
      const unsigned d = static_cast<unsigned char>(digit[i]) - unsigned{'0'};
      if (d > 9) break;
      value = value * 10 + static_cast<int>(d);
    }
    if (i == digits) return FitInt16(negative ? -value : value);
  }
  return ToInt16(Val(text));
}

std::optional<int16_t> ReadOperand(std::string_view text) { return ReadNumber(text); }

// The value of a setvar expression: at most one operation between two operands. Nothing when
// the statement must be abandoned (a 16-bit overflow).
std::optional<int16_t> EvaluateExpression(Game& game, std::string_view expression) {
  // The operators are looked for one after the other, not in the order they stand in the text;
  // a "-" in first place is the sign of the first operand.
  std::size_t op = FindByte(expression, '+');
  if (op == std::string_view::npos) op = FindByte(expression, '*');
  if (op == std::string_view::npos) op = FindByte(expression, '/');
  if (op == std::string_view::npos && expression.size() > 1) op = FindByte(expression, '-', 1);
  if (op == std::string_view::npos) return ReadOperand(expression);

  const std::optional<int16_t> left = ReadOperand(expression.substr(0, op));
  const std::optional<int16_t> right = ReadOperand(expression.substr(op + 1));
  if (!left || !right) return std::nullopt;
  const int a = *left;
  const int b = *right;
  switch (expression[op]) {
    case '+':
      return FitInt16(a + b);
    case '-':
      return FitInt16(a - b);
    case '*':
      return FitInt16(a * b);
    default:
      break;
  }
  if (b == 0) {
    LogScriptError(game, "Error: Division by zero");
    game.host.dialogs.ShowMessage("Error: Division by zero", "GWL Script Error",
                                  kOkOnly + kExclamation);
    PrintText(game, "|cr|bScript error encountered|cb|xb");
    return int16_t{0};
  }
  // The quotient is a single-precision number, written out and read back, and only then
  // rounded, halves to even: 7/2 gives 4 and 5/2 gives 2.
  const float quotient = static_cast<float>(a) / static_cast<float>(b);
  return ToInt16(Val(FormatSingle(quotient)));
}

}  // namespace

// Names are hashed and compared eight bytes at a time, their ASCII letters folded to lower case;
// a name with other characters is lower-cased as a whole first, so that a name hashes and
// compares the same however its letters are cased.
std::size_t VariableNameHash::operator()(std::string_view name) const {
  std::uint64_t hash = name.size();
  const std::size_t size = name.size();
  for (std::size_t pos = 0; pos < size; pos += 8) {
    // The last word of a long name is the name's last eight bytes, overlapping the word before.
    const std::uint64_t word = LoadWord(name, size >= 8 && size - pos < 8 ? size - 8 : pos);
    if ((word & kHighBits) != 0) {
      // Not ASCII: the lower-cased text is hashed as it stands.
      const std::string lowered = LCase(name);
      hash = lowered.size();
      for (std::size_t at = 0; at < lowered.size(); at += 8) {
        hash = MixWord(hash, LoadWord(lowered, at));
      }
      return static_cast<std::size_t>(hash);
    }
    hash = MixWord(hash, FoldAsciiWord(word));
  }
  return static_cast<std::size_t>(hash);
}

bool VariableNameEqual::operator()(std::string_view a, std::string_view b) const {
  if (a == b) return true;
  if (a.size() == b.size()) {
    bool ascii = true;
    for (std::size_t pos = 0; pos < a.size(); pos += 8) {
      const std::uint64_t word_a = LoadWord(a, pos);
      const std::uint64_t word_b = LoadWord(b, pos);
      if (((word_a | word_b) & kHighBits) != 0) {
        ascii = false;
        break;
      }
      if (FoldAsciiWord(word_a) != FoldAsciiWord(word_b)) return false;
    }
    if (ascii) return true;
  } else if (IsAsciiText(a) && IsAsciiText(b)) {
    return false;
  }
  return LCase(a) == LCase(b);
}

const VariableEntry* FindVariable(const VariableTable& table, std::string_view name) {
  const std::size_t row = FindRow(table, name);
  return row == kNoRow ? nullptr : &table.entries[row];
}

void SetStringVariable(Game& game, std::string_view name, std::string_view value) {
  WriteVariable(game, game.variables.strings, VariableStore::kString, name, value);
}

void SetNumericVariable(Game& game, std::string_view name, int16_t value) {
  // The decimal text, written from its last digit back.
  char buffer[8];
  char* start = buffer + sizeof buffer;
  int magnitude = value < 0 ? -static_cast<int>(value) : value;
  do {
    *--start = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  if (value < 0) *--start = '-';
  WriteVariable(game, game.variables.numerics, VariableStore::kNumeric, name,
                std::string_view(start, static_cast<std::size_t>(buffer + sizeof buffer - start)));
}

std::string GetStringVariable(Game& game, std::string_view name) {
  if (const VariableEntry* entry = FindEntry(game.variables.strings, name)) return entry->value;
  LogScriptError(game, "Warning: No string variable '" + std::string(name) + "' defined.");
  return std::string();
}

int16_t GetNumericVariable(Game& game, std::string_view name) {
  const VariableEntry* entry = FindEntry(game.variables.numerics, name);
  if (entry == nullptr) {
    LogScriptError(game, "Warning: No numeric variable '" + std::string(name) + "' defined.");
    return kUndefinedNumber;
  }
  // Values written here always fit; a value from elsewhere (a saved game) that does not is
  // held at the nearest end of the range.
  if (const std::optional<int16_t> number = ReadNumber(entry->value)) return *number;
  return Val(entry->value) < 0 ? int16_t{-32768} : int16_t{32767};
}

void ExecuteSetString(Game& game, std::string_view parameter) {
  std::string_view name;
  std::string_view value;
  if (!SplitAssignment(game, "setstring", parameter, name, value)) return;
  // The value keeps its blanks: "setstring <a;  x>" stores two blanks before the x.
  SetStringVariable(game, name, value);
}

void ExecuteSetVar(Game& game, std::string_view parameter) {
  std::string_view name;
  std::string_view expression;
  if (!SplitAssignment(game, "setvar", parameter, name, expression)) return;
  const std::optional<int16_t> value = EvaluateExpression(game, TrimBlanks(expression));
  if (!value) {
    LogOverflow(game, parameter);
    return;
  }
  SetNumericVariable(game, name, *value);
}

}  // namespace tarve
