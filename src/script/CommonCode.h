// The game text in memory: the numbered lines, the index of top-level blocks, and the primitives
// every other part of the player reads the game through (keyword tests, parameters, block and
// tag lookups).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarve {

struct Game;

// A game holds at most this many lines: line numbers are 16-bit.
inline constexpr int kMaxGameLines = 32767;

// The first and last line of a block; {0, 0} when there is no such block.
struct BlockRange {
  int start = 0;
  int end = 0;
  bool Found() const { return start != 0; }
  bool operator==(const BlockRange&) const = default;
};

// Hashing that lets the lookup tables be searched with a string_view, without building a key.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>{}(text);
  }
};
template <typename Value>
using TextMap = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

struct BlockRecord {
  int start = 0;
  int end = 0;
  std::string type;       // the word after "define ", read from fixed character positions
  std::string parameter;  // the define line's <...> parameter as written
  bool has_parameter = false;
};

// GameLines and BlockIndex. Both are 1-based: element 0 of each vector is an unused placeholder.
// Line numbers never change once the reader has finished.
struct GameText {
  GameText() : lines(1), blocks(1) {}

  std::vector<std::string> lines;
  std::vector<BlockRecord> blocks;

  int LineCount() const { return static_cast<int>(lines.size()) - 1; }
  int BlockCount() const { return static_cast<int>(blocks.size()) - 1; }
  const std::string& Line(int n) const {
    ++lines_read;
    return lines[static_cast<std::size_t>(n)];
  }

  // How many times Line was called: a script's statements are charged for the lines they read
  // (ChargeStatements), so that a statement which scans a long block cannot be repeated without
  // bound.
  mutable long lines_read = 0;

  // Lookup tables over `blocks`, kept by AddBlock. Names whose define line holds a substitution
  // marker can only be compared at lookup time and are kept apart, in block order.
  TextMap<int> first_of_type;
  TextMap<TextMap<int>> first_of_type_and_name;  // type, then name
  TextMap<std::vector<int>> substituted_names_of_type;
};

// Prefix test that ignores case and the text's leading blanks (not the prefix's).
bool BeginsWith(std::string_view text, std::string_view prefix);

// The text after a keyword: the last Len(text) - Len(prefix) characters. Callers use it after a
// BeginsWith on an unindented line. A prefix longer than the text gives "" and a log entry.
std::string GetEverythingAfter(Game& game, std::string_view text, std::string_view prefix);

// The trimmed text after `keyword` on a line that BeginsWith it, indented or not. A line that
// is the keyword alone, its trailing blank trimmed away, gives "".
std::string TextAfterKeyword(std::string_view line, std::string_view keyword);

// The text between the first "<" and the first ">" of the line, through the substitution passes
// when `substitute` is set. A line without a proper <...> pair gives "" and a log entry.
std::string RetrieveParameter(Game& game, std::string_view line, bool substitute);

// The same cut without substitution or logging; false when the line has no proper <...> pair.
bool CutParameter(std::string_view line, std::string_view& parameter);

// True for a line that, trimmed, is exactly "end define".
bool IsEndDefine(std::string_view line);

// Calls `visit(line)` for each inner line of the block that does not belong to a block nested
// inside it (a nested define line skips to the first "end define" line after it), until `visit`
// returns true.
template <typename Visit>
void ForEachOwnLine(const GameText& text, BlockRange block, Visit visit) {
  const int last = block.end - 1 < text.LineCount() ? block.end - 1 : text.LineCount();
  for (int i = block.start + 1; i <= last; ++i) {
    const std::string& line = text.Line(i);
    if (BeginsWith(line, "define ")) {
      while (i <= last && !IsEndDefine(text.Line(i))) ++i;
      continue;
    }
    if (visit(line)) return;
  }
}

BlockRange FindBlock(const Game& game, std::string_view type);
BlockRange FindBlockByName(Game& game, std::string_view type, std::string_view name);
std::string FindTagInBlock(Game& game, BlockRange block, std::string_view tag);
std::string FindLineWithTagAndParameter(Game& game, BlockRange block, std::string_view tag,
                                        std::string_view parameter);

// Appends a line; false (and nothing appended) when the game would pass kMaxGameLines.
bool AddLine(GameText& text, std::string line);

// Records a top-level block and indexes its type and name.
void AddBlock(GameText& text, int start, int end);

// The type of a block from its define line: the characters from the 8th up to the next blank.
std::string BlockTypeOf(std::string_view define_line);

// Builds BlockIndex from the lines. False when a define block is never closed (logged).
bool BuildBlockIndex(Game& game);

// The load-time check of angle brackets and block names. True when the game is unusable.
bool CheckBracketsAndNames(Game& game);

}  // namespace tarve
