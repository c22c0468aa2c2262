// A game's own functions are `define function` blocks that receive their parameters in the
// string variables tarve.function.parameter.N and give their result with `return` lines. Names
// without such a block go to the built-in functions, whose names compare exactly.
#include "interpreter/Functions.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "script/CommonCode.h"
#include "world/World.h"

namespace tarve {

namespace {

constexpr std::string_view kNotDefined = "__NOTDEFINED";

constexpr std::array<std::string_view, 10> kParameterNames = {
    "tarve.function.parameter.1", "tarve.function.parameter.2", "tarve.function.parameter.3",
    "tarve.function.parameter.4", "tarve.function.parameter.5", "tarve.function.parameter.6",
    "tarve.function.parameter.7", "tarve.function.parameter.8", "tarve.function.parameter.9",
    "tarve.function.parameter.10"};

// Calls `visit` with each piece of a parameter list cut at every ";", trimmed, and returns the
// number of pieces. An empty list has none.
template <typename Visit>
std::size_t ForEachParameter(std::string_view params, Visit visit) {
  if (params.empty()) return 0;
  std::size_t count = 0;
  std::size_t from = 0;
  while (true) {
    const std::size_t semicolon = params.find(';', from);
    visit(count++, TrimView(params.substr(from, semicolon - from)));
    if (semicolon == std::string_view::npos) return count;
    from = semicolon + 1;
  }
}

std::vector<std::string_view> SplitParameters(std::string_view params) {
  std::vector<std::string_view> pieces;
  ForEachParameter(params, [&](std::size_t, std::string_view piece) { pieces.push_back(piece); });
  return pieces;
}

std::string_view Piece(const std::vector<std::string_view>& pieces, std::size_t index) {
  return index < pieces.size() ? pieces[index] : std::string_view();
}

// A numeric parameter: its leading number, rounded to a whole number (halves to even) and held
// within a range no text can exceed, so that no position or count can overflow.
long long WholeNumber(std::string_view text) {
  double value = std::nearbyint(Val(text));
  if (!std::isfinite(value)) value = value < 0 ? -1e15 : 1e15;
  if (value > 1e15) value = 1e15;
  if (value < -1e15) value = -1e15;
  return static_cast<long long>(value);
}

std::size_t Count(long long value) { return value < 0 ? 0 : static_cast<std::size_t>(value); }

std::string CapFirst(std::string_view text) {
  const std::size_t first = ByteOffsetOfChar(text, 1);
  return UCase(text.substr(0, first)) + std::string(text.substr(first));
}

// rand <low; high>: low plus the whole part of (high - low + 1) times a uniform number in
// [0, 1). With low above high the two are swapped, so the answer still lies between them.
std::string RandomNumber(Game& game, std::string_view low_text, std::string_view high_text) {
  long long low = WholeNumber(low_text);
  long long high = WholeNumber(high_text);
  if (low > high) std::swap(low, high);
  const double unit = static_cast<double>(game.random()) / 4294967296.0;
  const double span = static_cast<double>(high - low) + 1.0;
  long long offset = static_cast<long long>(std::floor(span * unit));
  if (offset > high - low) offset = high - low;
  return std::to_string(low + offset);
}

std::string InStr(const std::vector<std::string_view>& pieces) {
  long long start = 1;
  std::string_view text = Piece(pieces, 0);
  std::string_view search = Piece(pieces, 1);
  if (pieces.size() >= 3) {
    start = WholeNumber(pieces[0]);
    text = pieces[1];
    search = pieces[2];
  }
  // A start before the first character searches from the first.
  if (start < 1) start = 1;
  return std::to_string(CharInStr(text, search, static_cast<std::size_t>(start)));
}

std::string Mid(const std::vector<std::string_view>& pieces) {
  const std::string_view text = Piece(pieces, 0);
  long long start = WholeNumber(Piece(pieces, 1));
  if (start < 1) start = 1;
  if (pieces.size() < 3) return CharMid(text, static_cast<std::size_t>(start));
  return CharMid(text, static_cast<std::size_t>(start), Count(WholeNumber(pieces[2])));
}

// The built-in functions, or kNotDefined for a name that is none of them.
std::string CallBuiltInFunction(Game& game, std::string_view name, std::string_view params) {
  const std::vector<std::string_view> pieces = SplitParameters(params);
  const std::string_view first = Piece(pieces, 0);
  if (name == "gettag") {
    const BlockRange room = FindBlockByName(game, "room", first);
    if (!room.Found()) return std::string();
    return FindTagInBlock(game, room, Piece(pieces, 1));
  }
  if (name == "locationof") return LocationOf(game, first);
  if (name == "lengthof") return std::to_string(CharCount(first));
  if (name == "left") return CharLeft(first, Count(WholeNumber(Piece(pieces, 1))));
  if (name == "right") return CharRight(first, Count(WholeNumber(Piece(pieces, 1))));
  if (name == "mid") return Mid(pieces);
  if (name == "rand") return RandomNumber(game, first, Piece(pieces, 1));
  if (name == "instr") return InStr(pieces);
  if (name == "ucase") return UCase(first);
  if (name == "lcase") return LCase(first);
  if (name == "capfirst") return CapFirst(first);
  if (name == "symbol") {
    if (first == "lt") return "<";
    if (first == "gt") return ">";
    return "!";
  }
  if (name == "!int.tarvepath") return game.program_folder;
  return std::string(kNotDefined);
}

void SetParameterVariables(Game& game, std::string_view params) {
  if (params.empty()) {
    // The parameters of an earlier call stay as they are; only the count says there are none.
    SetStringVariable(game, "tarve.function.numparameters", "0");
    return;
  }
  const std::size_t count = ForEachParameter(params, [&](std::size_t k, std::string_view piece) {
    if (k < kParameterNames.size()) {
      SetStringVariable(game, kParameterNames[k], piece);
    } else {
      SetStringVariable(game, "tarve.function.parameter." + std::to_string(k + 1), piece);
    }
  });
  char digits[24];
  const auto written = std::to_chars(digits, digits + sizeof digits, count);
  SetStringVariable(game, "tarve.function.numparameters",
                    std::string_view(digits, static_cast<std::size_t>(written.ptr - digits)));
}

// Runs the inner lines of a function block. Every `return` line sets the result and the lines
// after it still run, so the last `return` that runs gives the result.
std::string RunFunction(Game& game, BlockRange block, const NestedScript& nested) {
  std::string result;
  for (int i = block.start + 1; i < block.end && i <= game.text.LineCount(); ++i) {
    const std::string& line = game.text.Line(i);
    if (BeginsWith(line, "return ")) {
      result = RetrieveParameter(game, line, true);
    } else {
      ExecuteScript(game, line);
    }
    if (nested.MustStop()) break;
  }
  return result;
}

}  // namespace

std::string CallFunction(Game& game, std::string_view text) {
  // A call is one level of nesting, built-in ones too: reading a tag or a block name can call
  // a function again.
  NestedScript nested(game);
  if (!nested.entered()) return std::string();
  std::string_view name = text;
  std::string_view params;
  if (const std::size_t open = text.find('('); open != std::string_view::npos) {
    name = TrimView(text.substr(0, open));
    // Without a closing ")" the parameters run to the end of the reference.
    const std::size_t close = text.find(')', open + 1);
    params = TrimView(text.substr(
        open + 1, close == std::string_view::npos ? std::string_view::npos : close - open - 1));
  }

  const BlockRange block = FindBlockByName(game, "function", name);
  if (!block.Found()) {
    std::string answer = CallBuiltInFunction(game, name, params);
    if (answer == kNotDefined) return "[ERROR: Function '" + std::string(name) + "' not defined]";
    return answer;
  }
  SetParameterVariables(game, params);
  return RunFunction(game, block, nested);
}

}  // namespace tarve
