// The keyword table of compiled games: 256 entries, one per byte value, read at start-up from
// tarve.dat in the program's data folder. A compiled game stores each keyword as one byte.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarve {

// The special entries of the table.
inline constexpr std::string_view kEndOfLineEntry = "!cr";
inline constexpr std::string_view kQuoteEntry = "!quote";
inline constexpr std::string_view kUnknownEntry = "!unknown";

struct KeywordTable {
  std::array<std::string, 256> entries;
  // The lowest code of each entry text, for writing compiled games.
  std::unordered_map<std::string, int> lowest_code;
  bool loaded = false;

  int CodeOf(std::string_view entry) const;  // -1 when absent
};

// Reads the table from the text of tarve.dat: comma-separated fields, each a comment ("#...")
// or "keyword;code". Faults (a code of 256 or more, a field without ";") go to `problems` and
// the field is skipped.
KeywordTable ParseKeywordTable(std::string_view text, std::vector<std::string>& problems);

struct Game;
// Reads tarve.dat from the game's program folder into game.keywords, logging its faults. False
// when the file cannot be read (compiled games then cannot be opened).
bool LoadKeywordTable(Game& game);

}  // namespace tarve
