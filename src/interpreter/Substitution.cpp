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
    const std::size_t open = text.find(delimiter, pos);
    if (open == std::string_view::npos) {
      result.append(text.substr(pos));
      ChargeForText(game, result);
      return result;
    }
    result.append(text.substr(pos, open - pos));
    const std::size_t close = text.find(delimiter, open + 1);
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
  std::string current(text);
  for (const Pass& pass : kPasses) {
    // A pass over text without its delimiter would give the text unchanged.
    if (current.find(pass.delimiter) == std::string::npos) continue;
    current = Substitute(game, current, pass.delimiter, pass.kind);
  }
  return current;
}

}  // namespace tarve
