// String and numeric variables: the two tables, their readers and writers, and the setstring and
// setvar statements.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarve {

struct Game;

// The marker value an undefined numeric variable reads as.
inline constexpr int16_t kUndefinedNumber = -32767;

struct VariableEntry {
  std::string name;  // as spelt by the last write
  std::string value;
};

// Hashing and equality of variable names that ignore case, so that a name can be looked up as
// it is written in a script without lower-casing a copy of it first.
struct VariableNameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const;
};
struct VariableNameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

// A name as a script last spelt it and the row it found. A loop reads and writes the same few
// variables over and over, and comparing a short name byte for byte costs far less than hashing
// and comparing it without regard to case. Rows never move, so a found row stays right.
struct RecentVariable {
  std::string name;
  std::size_t row = 0;
};

// Variables in order of creation, with an index by lower-cased name.
struct VariableTable {
  std::vector<VariableEntry> entries;
  std::unordered_map<std::string, std::size_t, VariableNameHash, VariableNameEqual> index;
  mutable std::array<RecentVariable, 8> recent;  // by a mix of a name's length and letters
};

struct Variables {
  VariableTable strings;
  VariableTable numerics;
  // What the names (twice: as written and indexed) and values hold, and kVariableRecordBytes
  // for each variable.
  std::size_t bytes = 0;
};

// A variable's value holds at most this many bytes: a longer one is cut (logged). All variables
// together hold at most kMaxVariablesBytes: a write that would pass it is refused (logged). No
// script, however it loops, can take all the memory there is.
inline constexpr std::size_t kMaxVariableValueBytes = std::size_t{1} << 20;
inline constexpr std::size_t kMaxVariablesBytes = std::size_t{64} << 20;
// Each variable also counts the separator and line end that a saved game writes with it, so
// that the variables a game may hold always fit in a saved game that can be loaded again.
inline constexpr std::size_t kVariableRecordBytes = 4;

// Which variables viewer a row belongs to.
enum class VariableStore { kString = 1, kNumeric = 2, kCollectable = 3 };

void SetStringVariable(Game& game, std::string_view name, std::string_view value);
void SetNumericVariable(Game& game, std::string_view name, int16_t value);
// Reading an undefined variable logs a warning and gives "" or kUndefinedNumber.
std::string GetStringVariable(Game& game, std::string_view name);
int16_t GetNumericVariable(Game& game, std::string_view name);
// The entry of that name, or nullptr; nothing is logged.
const VariableEntry* FindVariable(const VariableTable& table, std::string_view name);

// setstring <name; text> and setvar <name; expression>, with the parameter already substituted.
void ExecuteSetString(Game& game, std::string_view parameter);
void ExecuteSetVar(Game& game, std::string_view parameter);

}  // namespace tarve
