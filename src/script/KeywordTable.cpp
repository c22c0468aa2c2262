#include "script/KeywordTable.h"

#include <cmath>

#include "base/Files.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"

namespace tarve {

int KeywordTable::CodeOf(std::string_view entry) const {
  auto it = lowest_code.find(std::string(entry));
  return it == lowest_code.end() ? -1 : it->second;
}

KeywordTable ParseKeywordTable(std::string_view text, std::vector<std::string>& problems) {
  KeywordTable table;
  // Fields end at a comma or a line end; leading blanks are skipped and a field in double
  // quotes loses its quotes, as the player has always read its data files.
  std::size_t pos = 0;
  while (pos <= text.size()) {
    std::size_t end = text.find_first_of(",\r\n", pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view field = TrimView(text.substr(pos, end - pos));
    pos = end + 1;
    if (field.size() >= 2 && field.front() == '"' && field.back() == '"') {
      field = field.substr(1, field.size() - 2);
    }
    if (field.empty() || field[0] == '#') continue;
    const std::size_t semicolon = field.find(';');
    if (semicolon == std::string_view::npos) {
      problems.push_back("Warning: tarve.dat entry '" + std::string(field) +
                         "' has no code; it is ignored.");
      continue;
    }
    const std::string keyword = Trim(field.substr(0, semicolon));
    const double code = Val(field.substr(semicolon + 1));
    if (!(code >= 0 && code < 256) || code != std::floor(code)) {
      problems.push_back("Error: tarve.dat entry '" + std::string(field) +
                         "' has a code outside 0 to 255; it is ignored.");
      continue;
    }
    const int index = static_cast<int>(code);
    table.entries[static_cast<std::size_t>(index)] = keyword;
    auto [it, inserted] = table.lowest_code.try_emplace(keyword, index);
    if (!inserted && index < it->second) it->second = index;
  }
  table.loaded = true;
  return table;
}

bool LoadKeywordTable(Game& game) {
  const std::string path = game.program_folder + "/tarve.dat";
  std::string bytes;
  if (!ReadWholeFile(path, bytes, std::size_t{1} << 20)) {
    game.keywords = KeywordTable();
    LogScriptError(game, "Warning: Unable to read " + path + "; compiled games cannot be opened.");
    return false;
  }
  std::vector<std::string> problems;
  game.keywords = ParseKeywordTable(DecodeGameText(std::move(bytes)), problems);
  for (const std::string& problem : problems) LogScriptError(game, problem);
  return true;
}

}  // namespace tarve
