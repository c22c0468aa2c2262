// Substitution is a single left-to-right scan per pass with no nesting: the first delimiter
// opens a reference and the next one closes it. A value inserted by one pass is not scanned
// again by that pass, but the passes after it do see it.
#include "interpreter/Substitution.h"

#include <charconv>

#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Functions.h"
#include "interpreter/Variables.h"
#include "output/Output.h"
#include "world/Items.h"

namespace tarve {

namespace {

// The position of `wanted` in `text` from `from` on, or npos. The texts substituted are mostly a
// few bytes long, where a plain loop costs less than setting up a library search.
inline std::size_t FindByte(std::string_view text, char wanted, std::size_t from) {
  for (std::size_t pos = from; pos < text.size(); ++pos) {
    if (text[pos] == wanted) return pos;
  }
  return std::string_view::npos;
}

// Which of the four delimiters `text` holds, one bit each in the order of the passes.
inline unsigned DelimitersIn(std::string_view text) {
  unsigned found = 0;
  for (const char c : text) {
    switch (c) {
      case '#':
        found |= 1u;
        break;
      case '%':
        found |= 2u;
        break;
      case '~':
        found |= 4u;
        break;
      case '$':
        found |= 8u;
        break;
      default:
        break;
    }
  }
  return found;
}

void AppendValue(Game& game, std::string& result, std::string_view name, SubstitutionKind kind) {
  switch (kind) {
    case SubstitutionKind::kString:
      if (const VariableEntry* entry = FindVariable(game.variables.strings, name)) {
        result.append(entry->value);
      } else {
        result.append(GetStringVariable(game, name));  // logs the warning, gives ""
      }
      return;
    case SubstitutionKind::kNumeric: {
      // A numeric variable holds the decimal text of its number, which is what goes in.
      if (const VariableEntry* entry = FindVariable(game.variables.numerics, name)) {
        result.append(entry->value);
        return;
      }
      char buffer[8];
      const auto written = std::to_chars(buffer, buffer + sizeof buffer,
                                         static_cast<int>(GetNumericVariable(game, name)));
      result.append(buffer, static_cast<std::size_t>(written.ptr - buffer));
      return;
    }
    case SubstitutionKind::kCollectable:
      result.append(FormatSingle(GetCollectableAmount(game, name)));
      return;
    case SubstitutionKind::kFunction:
      result.append(CallFunction(game, name));
      return;
  }
}

// Cuts `result` back to the most a substituted text may hold, at a character boundary, and logs
// it.
void CutOverlongText(Game& game, std::string& result, std::string_view text) {
  result.resize(LeftBytes(result, kMaxSubstitutedBytes).size());
  LogScriptError(game, "Error: The text of <" + ShortenedForLog(text) + "> grew past " +
                           std::to_string(kMaxSubstitutedBytes) +
                           " bytes as its variables were put in - the rest of it was cut off.");
}

// What building `result` costs in statements (see kSubstitutedBytesPerStatement).
void ChargeForText(Game& game, const std::string& result) {
  if (result.size() >= kSubstitutedBytesPerStatement) {
    ChargeStatements(game, static_cast<long>(result.size() / kSubstitutedBytesPerStatement));
  }
}

}  // namespace

std::string Substitute(Game& game, std::string_view text, char delimiter, SubstitutionKind kind) {
  std::string result;
  std::size_t pos = 0;
  while (true) {
    const std::size_t open = FindByte(text, delimiter, pos);
    if (open == std::string_view::npos) {
      result.append(text.substr(pos));
      ChargeForText(game, result);
      return result;
    }
    result.append(text.substr(pos, open - pos));
    const std::size_t close = FindByte(text, delimiter, open + 1);
    if (close == std::string_view::npos) {
      LogScriptError(game, "Line parameter <" + std::string(text) + "> has missing " +
                               std::string(1, delimiter));
      PrintText(game,
                "WARNING: GWL Script error: Missing variable character - see log file (if "
                "enabled) for details.");
      return "<ERROR>";
    }
    const std::string_view name = text.substr(open + 1, close - open - 1);
    // Two delimiters side by side give the delimiter itself, and then, as the player has always
    // done, the value of the variable with the empty name as well (normally undefined).
    if (name.empty()) result.push_back(delimiter);
    AppendValue(game, result, name, kind);
    if (result.size() > kMaxSubstitutedBytes) {
      CutOverlongText(game, result, text);
      ChargeForText(game, result);
      return result;
    }
    pos = close + 1;
  }
}

std::string SubstituteAll(Game& game, std::string_view text) {
  struct Pass {
    char delimiter;
    SubstitutionKind kind;
  };
  static constexpr Pass kPasses[] = {{'#', SubstitutionKind::kString},
                                     {'%', SubstitutionKind::kNumeric},
                                     {'~', SubstitutionKind::kCollectable},
                                     {'$', SubstitutionKind::kFunction}};
  // The text is scanned once for all delimiters, and again only after a pass changed it: a
  // pass over text without its delimiter would give the text unchanged.
  unsigned pending = DelimitersIn(text);
  std::string current;
  bool substituted = false;  // `current` holds the text so far
  for (std::size_t i = 0; i < 4; ++i) {
    const Pass& pass = kPasses[i];
    if ((pending & (1u << i)) == 0) continue;
    const std::string_view from = substituted ? std::string_view(current) : text;
    current = Substitute(game, from, pass.delimiter, pass.kind);
    substituted = true;
    pending = DelimitersIn(current) & ~((2u << i) - 1);
  }
  if (!substituted) return std::string(text);
  return current;
}

}  // namespace tarve
