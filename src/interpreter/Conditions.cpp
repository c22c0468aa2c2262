// The if statement. Connector words are found only outside the <...> parameters: the searches
// run on a copy of the line in which everything inside angle brackets is masked, and the pieces
// are cut from the real line at the same positions. The words are found in lower case only,
// the tests are folded strictly from left to right, and every test is evaluated (so every `ask`
// is shown), which is how games written for the language expect conditions to behave.
#include "interpreter/Conditions.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/ExecuteScript.h"
#include "output/Output.h"
#include "script/CommonCode.h"
#include "world/Items.h"
#include "world/World.h"

namespace tarve {

namespace {

enum class Connector { kAnd, kOr, kFinal };

enum class Test { kNone, kGot, kHas, kAsk, kIs, kHere, kExists, kReal };

// The test keywords in their order of testing.
constexpr std::array<std::pair<std::string_view, Test>, 7> kTests = {{
    {"got ", Test::kGot},
    {"has ", Test::kHas},
    {"ask ", Test::kAsk},
    {"is ", Test::kIs},
    {"here ", Test::kHere},
    {"exists ", Test::kExists},
    {"real ", Test::kReal},
}};

// Every character strictly inside angle brackets becomes "~"; the brackets themselves stay.
void Mask(std::string::iterator begin, std::string::iterator end) {
  bool inside = false;
  for (auto it = begin; it != end; ++it) {
    if (inside) {
      if (*it == '>') {
        inside = false;
      } else {
        *it = '~';
      }
    } else if (*it == '<') {
      inside = true;
    }
  }
}

void ReportMissingThen(Game& game, std::string_view statement) {
  const std::string message =
      "Expected 'then' missing from script statement '" + std::string(statement) + "'";
  LogScriptError(game, message);
  game.host.dialogs.ShowMessage(message + " - unable to execute this statement.",
                                "GWL Script Error", kOkOnly + kExclamation);
  PrintText(game, "|cr|bScript error encountered|cb|xb");
}

// The next piece of the condition from `p`: where it ends and the connector after it. "and "
// is looked for first wherever an "or " may stand, so "a or b and c" gives the pieces "a or b"
// and "c".
std::size_t FindPieceEnd(std::string_view masked, std::size_t p, std::size_t then_pos,
                         Connector& connector) {
  connector = Connector::kAnd;
  std::size_t found = masked.find("and ", p);
  if (found != std::string_view::npos) return found;
  connector = Connector::kOr;
  found = masked.find("or ", p);
  if (found != std::string_view::npos) return found;
  connector = Connector::kFinal;
  found = masked.find("then ", p);
  if (found != std::string_view::npos) return found;
  // "then" ends the statement with nothing after it: the condition runs up to it.
  return then_pos >= p ? then_pos : p;
}

// The test keyword a piece begins with. The first characters are lower-cased once; a piece
// that does not begin in plain ASCII goes through the full begins-with test.
Test FindTest(std::string_view piece) {
  char folded[7];
  const std::size_t count = std::min(piece.size(), sizeof folded);
  bool ascii = true;
  for (std::size_t i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(piece[i]);
    if (byte >= 0x80) {
      ascii = false;
      break;
    }
    folded[i] = static_cast<char>(byte | (static_cast<unsigned>(byte - 'A') < 26u ? 0x20 : 0));
  }
  for (const auto& [keyword, test] : kTests) {
    const bool match =
        ascii ? (count >= keyword.size() && std::string_view(folded, keyword.size()) == keyword)
              : BeginsWith(piece, keyword);
    if (match) return test;
  }
  return Test::kNone;
}

// The value of one test, or nothing when the piece begins with no test keyword.
std::optional<bool> EvaluateTest(Game& game, std::string_view piece) {
  const Test test = FindTest(piece);
  if (test == Test::kNone) return std::nullopt;
  const std::string parameter = RetrieveParameter(game, piece, true);
  switch (test) {
    case Test::kGot:
      return TestGot(game, parameter);
    case Test::kHas:
      return TestHas(game, parameter);
    case Test::kAsk:
      return game.host.dialogs.ShowMessage(parameter, "Tarve", kYesNo) == kAnswerYes;
    case Test::kIs: {
      const std::string_view texts = parameter;
      const std::size_t semicolon = texts.find(';');
      const std::string_view second =
          semicolon == std::string_view::npos ? std::string_view() : texts.substr(semicolon + 1);
      return EqualsNoCase(TrimView(texts.substr(0, semicolon)), TrimView(second));
    }
    case Test::kHere:
      return TestHere(game, parameter);
    case Test::kExists:
      return TestExists(game, parameter, false);
    case Test::kReal:
      return TestExists(game, parameter, true);
    case Test::kNone:
      break;
  }
  return std::nullopt;
}

}  // namespace

void ExecuteCondition(Game& game, std::string_view line) {
  // The statement is copied, with the masked copy of its condition beside it in the same
  // buffer: the tests may run scripts (functions) that change the game text the line came from.
  const std::string_view trimmed = TrimView(line);
  std::string buffer;
  buffer.reserve(2 * trimmed.size());
  buffer.append(trimmed);
  std::string_view text = TrimView(std::string_view(buffer).substr(ByteOffsetOfChar(buffer, 3)));
  bool expected = true;
  if (BeginsWith(text, "not ")) {
    expected = false;
    text = TrimView(text.substr(ByteOffsetOfChar(text, 4)));
  }
  const std::size_t text_from = static_cast<std::size_t>(text.data() - buffer.data());
  const std::size_t text_size = text.size();
  buffer.append(text);  // no reallocation: the room was reserved
  Mask(buffer.begin() + static_cast<std::ptrdiff_t>(trimmed.size()), buffer.end());
  const std::string_view statement = std::string_view(buffer).substr(0, trimmed.size());
  text = std::string_view(buffer).substr(text_from, text_size);
  const std::string_view masked = std::string_view(buffer).substr(trimmed.size());

  const std::size_t then_pos = masked.find("then");
  if (then_pos == std::string_view::npos) {
    ReportMissingThen(game, statement);
    return;
  }
  std::string then_script;
  std::string else_script;
  const std::size_t script_from = then_pos + 4;
  const std::size_t else_pos = masked.find("else");
  if (else_pos == std::string_view::npos) {
    then_script = Trim(text.substr(script_from));
  } else {
    // The then script ends before the blank that stands in front of "else".
    const std::size_t script_to = else_pos == 0 ? 0 : else_pos - 1;
    if (script_to > script_from) {
      then_script = Trim(text.substr(script_from, script_to - script_from));
    }
    else_script = Trim(text.substr(else_pos + 4));
  }

  // Every piece is evaluated, in order, and folded into the result with the connector that
  // stood before it; the first piece is joined with "and".
  bool result = true;
  bool previous = false;
  Connector before = Connector::kAnd;
  std::size_t p = 0;
  while (true) {
    Connector after = Connector::kFinal;
    const std::size_t end = FindPieceEnd(masked, p, then_pos, after);
    const bool value = EvaluateTest(game, TrimView(text.substr(p, end - p))).value_or(previous);
    result = before == Connector::kAnd ? (result && value) : (result || value);
    previous = value;
    before = after;
    if (after == Connector::kFinal) break;
    p = masked.find(' ', end);  // the connector word ends at its blank
  }

  if (result == expected) {
    ExecuteScript(game, then_script);
  } else if (!else_script.empty()) {
    ExecuteScript(game, else_script);
  }
}

}  // namespace tarve
