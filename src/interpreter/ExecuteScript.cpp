// The statement dispatcher. Statements are recognised by their leading keyword, ignoring case
// and leading blanks, by testing the rows of one table in order: the first row whose keyword
// the line begins with runs, so the order of the rows is part of the language ("show " comes
// before "showobject ", "wait" after "shell "). The handlers here are those of the statements
// that belong to no other part of the player.
#include "interpreter/ExecuteScript.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/Conditions.h"
#include "interpreter/ExternalCommands.h"
#include "interpreter/Selection.h"
#include "interpreter/Substitution.h"
#include "interpreter/Variables.h"
#include "output/Output.h"
#include "script/CommonCode.h"
#include "world/CommandParser.h"
#include "world/Items.h"
#include "world/RoomDescription.h"
#include "world/World.h"

namespace tarve {

namespace {

struct Statement {
  std::string_view line;     // as the script holds it
  std::string_view trimmed;  // without its surrounding blanks
  std::string_view rest;     // the trimmed line after the keyword
  // The parameter already through the substitution passes, when a loop has made it.
  const std::string* substituted = nullptr;
};

using Handler = void (*)(Game&, const Statement&);

enum class Match {
  kPrefix,  // the line begins with the keyword
  kWhole,   // the whole trimmed line is the keyword
};

struct StatementRow {
  std::string_view keyword;  // lower case
  Match match;
  Handler handler;
};

// The parameter of the statement, through the substitution passes when `substitute` is set.
// A line without a proper <...> pair is logged by the parameter reader and the statement is
// skipped.
std::optional<std::string> Parameter(Game& game, const Statement& s, bool substitute = true) {
  std::string_view parameter;
  if (!CutParameter(s.line, parameter)) {
    RetrieveParameter(game, s.line, false);  // logs the malformed line
    return std::nullopt;
  }
  if (substitute && s.substituted != nullptr) return *s.substituted;
  if (substitute) return SubstituteAll(game, parameter);
  return std::string(parameter);
}

// Runs `action` with the substituted parameter when the line has one.
template <typename Action>
void WithParameter(Game& game, const Statement& s, Action action) {
  if (s.substituted != nullptr) {
    action(*s.substituted);
    return;
  }
  if (std::optional<std::string> parameter = Parameter(game, s)) action(*parameter);
}

void If(Game& game, const Statement& s) { ExecuteCondition(game, s.line); }

void Choose(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteChoose(game, p); });
}

void Set(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteSet(game, p); });
}

void Say(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { PrintText(game, "\"" + p + "\""); });
}

void Do(Game& game, const Statement& s) {
  // The procedure's name is taken as written: do <%name%> looks for a procedure of that name.
  if (std::optional<std::string> name = Parameter(game, s, false)) RunProcedure(game, *name);
}

void Give(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteGive(game, p); });
}

void Lose(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteLose(game, p); });
}

void Msg(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { PrintText(game, p); });
}

void MovePlayerTo(Game& game, const std::string& room) {
  const BlockRange block = FindBlockByName(game, "room", room);
  if (!block.Found()) {
    // The player stays where they are; the author learns of the misspelt room.
    LogScriptError(game, "Error: There is no room '" + room + "' - goto <" + room +
                             "> was skipped.");
    return;
  }
  SetStringVariable(game, "tarve.currentroom", room);
  game.world.current_room = room;
  DescribeRoom(game, room);
  RefreshInventory(game);
  game.host.pane.Repaint();
  // Every script line of the room runs, in block order.
  NestedScript nested(game);
  if (!nested.entered()) return;
  for (int i = block.start + 1; i < block.end && i <= game.text.LineCount(); ++i) {
    const std::string_view line = TrimView(game.text.Line(i));
    if (!BeginsWith(line, "script ")) continue;
    ExecuteScript(game, line.substr(ByteOffsetOfChar(line, 7)));
    if (nested.MustStop()) break;
  }
}

void Goto(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { MovePlayerTo(game, p); });
}

void EndGame(Game& game, bool won) {
  DisplayText(game, won ? "win" : "lose");
  game.host.window.GameOver();
  game.host.window.SetStatusText(
      "GAME OVER - select 'Exit this game' from the 'Tarve' menu to exit, or 'Restart this game' "
      "to play again.");
  game.run.game_over = true;
}

void PlayerWin(Game& game, const Statement&) { EndGame(game, true); }
void PlayerLose(Game& game, const Statement&) { EndGame(game, false); }

void PlayWav(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecutePlayWav(game, p); });
}

void PlayMidi(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecutePlayMidi(game, p); });
}

void Show(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteShow(game, p); });
}

template <ThingKind kKind, bool kExists>
void SetExists(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { SetThingExists(game, kKind, p, kExists); });
}

template <ThingKind kKind, bool kVisible>
void SetVisible(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { SetThingVisible(game, kKind, p, kVisible); });
}

template <ThingKind kKind>
void Move(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { MoveThing(game, kKind, p); });
}

void Exec(Game& game, const Statement& s) {
  // A copy: the command may load another game, which replaces the text the line came from.
  const std::string line(s.trimmed);
  ExecuteExec(game, line);
}

void SetString(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteSetString(game, p); });
}

void SetVar(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteSetVar(game, p); });
}

// A parameter whose only references are to numeric variables, cut into the text between them
// once: each round puts the numbers in without scanning the parameter again.
struct ParameterPattern {
  struct Piece {
    std::string_view text;  // the text before the reference
    std::string_view name;  // the numeric variable referred to
  };
  std::vector<Piece> pieces;
  std::string_view tail;  // the text after the last reference
  bool usable = false;
};

// The script a loop runs on every round, its keyword found once: the text is the same each
// round, so matching it again would find the same statement.
struct LoopBody {
  std::string_view line;
  std::string_view trimmed;
  std::size_t row = 0;
  bool matched = false;  // a single statement whose keyword is known
  ParameterPattern pattern;
};
LoopBody PrepareLoopBody(std::string_view script);
// What ExecuteScript(game, body.line) does; `parameter` is room for the substituted parameter
// that the rounds reuse.
void RunLoopBody(Game& game, const LoopBody& body, std::string& parameter);

// for <variable; from; to> script and for <variable; from; to; step> script. The script may
// change the variable, which moves the loop on or back; with a step of 0 only the script moves
// it. Every round counts against the statement's allowance, which ends a loop that the script
// never ends.
void For(Game& game, const Statement& s) {
  const std::optional<std::string> parameter = Parameter(game, s);
  if (!parameter) return;
  const std::string script(TrimView(s.line.substr(s.line.find('>') + 1)));
  std::array<std::string_view, 4> fields{};
  std::size_t count = 0;
  std::string_view remaining = *parameter;
  while (count < fields.size()) {
    const std::size_t semicolon = remaining.find(';');
    fields[count++] = remaining.substr(0, semicolon);
    if (semicolon == std::string_view::npos) break;
    remaining.remove_prefix(semicolon + 1);
  }
  if (count < 3) {
    LogScriptError(game, "Error: Expected <variable; from; to> in for <" + *parameter +
                             "> - the loop was skipped.");
    return;
  }
  const std::string name(TrimView(fields[0]));
  const std::optional<int16_t> from = ToInt16(Val(fields[1]));
  const std::optional<int16_t> to = ToInt16(Val(fields[2]));
  const std::optional<int16_t> step = count > 3 ? ToInt16(Val(fields[3])) : int16_t{1};
  if (!from || !to || !step) {
    LogScriptError(game, "Error: Overflow in for <" + *parameter +
                             "> - the numbers must lie from -32768 to 32767; the loop was "
                             "skipped.");
    return;
  }
  NestedScript nested(game);
  if (!nested.entered()) return;
  int i = *from;
  const LoopBody body = PrepareLoopBody(script);
  std::string body_parameter;
  // A round costs what its script runs, and more where that is little against the loop's own
  // work: one statement for an empty script (or loops of empty loops would never reach the
  // limit), and one for every kilobyte of the variable's name, which each round looks up.
  const long round_cost = (body.trimmed.empty() ? 1 : 0) +
                          static_cast<long>(name.size() / kSubstitutedBytesPerStatement);
  while (*step < 0 ? i >= *to : i <= *to) {
    SetNumericVariable(game, name, static_cast<int16_t>(i));
    RunLoopBody(game, body, body_parameter);
    if (nested.MustStop() || (round_cost > 0 && !ChargeStatements(game, round_cost))) return;
    // The next value comes from the variable, which the script may have changed; a value that
    // would leave the 16-bit range ends the loop.
    const int next = GetNumericVariable(game, name) + *step;
    if (next < -32768 || next > 32767) return;
    i = next;
  }
}

void Enter(Game& game, const Statement& s) {
  const std::optional<std::string> name = Parameter(game, s);
  if (!name) return;
  Host& host = game.host;
  host.window.EnableGameControls(false);
  host.window.ClearCommandBox();
  ParserState& parser = game.parser;
  parser.waiting_for_input = true;
  parser.input_variable = *name;
  // The main window puts the next typed line into the variable and clears the flag. Once no
  // more input can come, waiting would never end.
  if (!game.run.input_ended) {
    host.window.ProcessEventsUntil([&parser] { return !parser.waiting_for_input; });
  }
  parser.waiting_for_input = false;
  host.window.EnableGameControls(true);
}

void DisplayTextStatement(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { DisplayText(game, p); });
}

void Font(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) {
    SetOutputFont(game, game.settings.override_all_fonts ? std::string() : p);
  });
}

void Pause(Game& game, const Statement& s) {
  const std::optional<std::string> parameter = Parameter(game, s);
  if (!parameter) return;
  const std::optional<int16_t> milliseconds = ToInt16(Val(*parameter));
  if (!milliseconds) {
    LogScriptError(game, "Error: Overflow in pause <" + *parameter +
                             "> - the pause must lie from 0 to 32767 milliseconds; it was "
                             "skipped.");
    return;
  }
  game.host.pane.Repaint();
  game.parser.paused = true;
  if (*milliseconds > 0) game.host.platform.Sleep(*milliseconds);
  game.parser.paused = false;
}

void Clear(Game& game, const Statement&) { game.host.pane.ClearOutput(); }

void NoIntro(Game& game, const Statement&) { game.run.show_intro = false; }

void Debug(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { LogScriptError(game, p); });
}

void MailTo(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteMailTo(game, p); });
}

void Shell(Game& game, const Statement& s) {
  WithParameter(game, s, [&](const std::string& p) { ExecuteShell(game, p); });
}

void Wait(Game& game, const Statement& s) { WaitForKey(game, TrimView(s.rest)); }

void OutputOn(Game& game, const Statement&) { game.output.enabled = true; }
void OutputOff(Game& game, const Statement&) { game.output.enabled = false; }

void AdvFunc(Game& game, const Statement& s) { ExecuteAdvFunc(game, TrimView(s.rest)); }

// The statements in their order of testing.
constexpr std::array<StatementRow, 41> kStatements = {{
    {"if ", Match::kPrefix, If},
    {"choose ", Match::kPrefix, Choose},
    {"set ", Match::kPrefix, Set},
    {"say ", Match::kPrefix, Say},
    {"do ", Match::kPrefix, Do},
    {"give ", Match::kPrefix, Give},
    {"lose ", Match::kPrefix, Lose},
    {"msg ", Match::kPrefix, Msg},
    {"goto ", Match::kPrefix, Goto},
    {"playerwin", Match::kPrefix, PlayerWin},
    {"playerlose", Match::kPrefix, PlayerLose},
    {"playwav ", Match::kPrefix, PlayWav},
    {"playmidi ", Match::kPrefix, PlayMidi},
    {"show ", Match::kPrefix, Show},
    {"hideobject ", Match::kPrefix, SetExists<ThingKind::kObject, false>},
    {"showobject ", Match::kPrefix, SetExists<ThingKind::kObject, true>},
    {"moveobject ", Match::kPrefix, Move<ThingKind::kObject>},
    {"hidechar ", Match::kPrefix, SetExists<ThingKind::kCharacter, false>},
    {"showchar ", Match::kPrefix, SetExists<ThingKind::kCharacter, true>},
    {"movechar ", Match::kPrefix, Move<ThingKind::kCharacter>},
    {"revealobject ", Match::kPrefix, SetVisible<ThingKind::kObject, true>},
    {"concealobject ", Match::kPrefix, SetVisible<ThingKind::kObject, false>},
    {"revealchar ", Match::kPrefix, SetVisible<ThingKind::kCharacter, true>},
    {"concealchar ", Match::kPrefix, SetVisible<ThingKind::kCharacter, false>},
    {"exec ", Match::kPrefix, Exec},
    {"setstring ", Match::kPrefix, SetString},
    {"setvar ", Match::kPrefix, SetVar},
    {"for ", Match::kPrefix, For},
    {"enter ", Match::kPrefix, Enter},
    {"displaytext ", Match::kPrefix, DisplayTextStatement},
    {"font ", Match::kPrefix, Font},
    {"pause ", Match::kPrefix, Pause},
    {"clear", Match::kWhole, Clear},
    {"nointro", Match::kWhole, NoIntro},
    {"debug ", Match::kPrefix, Debug},
    {"mailto ", Match::kPrefix, MailTo},
    {"shell ", Match::kPrefix, Shell},
    {"wait", Match::kPrefix, Wait},
    {"outputon", Match::kWhole, OutputOn},
    {"outputoff", Match::kWhole, OutputOff},
    {"advfunc ", Match::kPrefix, AdvFunc},
}};

constexpr std::size_t LongestKeyword() {
  std::size_t longest = 0;
  for (const StatementRow& row : kStatements) {
    if (row.keyword.size() > longest) longest = row.keyword.size();
  }
  return longest;
}

// The rows of kStatements by the first letter of their keyword, each list in table order, so
// that a line is compared only with the keywords that can match it.
struct RowsByFirstLetter {
  static constexpr std::size_t kMaxRows = 8;
  std::array<std::array<std::uint8_t, kMaxRows>, 26> rows{};
  std::array<std::uint8_t, 26> count{};
};

constexpr RowsByFirstLetter IndexRows() {
  RowsByFirstLetter index;
  for (std::size_t i = 0; i < kStatements.size(); ++i) {
    const auto letter = static_cast<std::size_t>(kStatements[i].keyword[0] - 'a');
    index.rows[letter][index.count[letter]++] = static_cast<std::uint8_t>(i);
  }
  return index;
}

constexpr RowsByFirstLetter kRowsByFirstLetter = IndexRows();

// The first characters of a line, lower-cased once, so that every row is a plain comparison.
// A character whose lower case is not a single ASCII character can match no keyword and is
// kept as a byte no keyword holds.
struct FoldedStart {
  static constexpr std::size_t kSize = LongestKeyword();
  char chars[kSize] = {};
  std::size_t ends[kSize] = {};  // byte position after each character
  std::size_t count = 0;
};

void FoldStart(std::string_view text, FoldedStart& folded) {
  // Keywords are ASCII and so is nearly every line: such a line is folded byte by byte.
  const std::size_t ascii_count = std::min(text.size(), FoldedStart::kSize);
  std::size_t i = 0;
  for (; i < ascii_count; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0x80) break;
    folded.chars[i] =
        static_cast<char>(byte | (static_cast<unsigned>(byte - 'A') < 26u ? 0x20 : 0));
    folded.ends[i] = i + 1;
  }
  folded.count = i;
  std::size_t pos = i;
  while (folded.count < FoldedStart::kSize && pos < text.size()) {
    const auto byte = static_cast<unsigned char>(text[pos]);
    char lower = '\xff';
    if (byte < 0x80) {
      lower = static_cast<char>((byte >= 'A' && byte <= 'Z') ? byte + ('a' - 'A') : byte);
      ++pos;
    } else {
      const std::size_t size = ByteOffsetOfChar(text.substr(pos), 1);
      const std::string mapped = LCase(text.substr(pos, size));
      if (mapped.size() == 1 && static_cast<unsigned char>(mapped[0]) < 0x80) lower = mapped[0];
      pos += size;
    }
    folded.chars[folded.count] = lower;
    folded.ends[folded.count] = pos;
    ++folded.count;
  }
}

enum class QuickMatch { kFound, kNone, kNotAscii };

// Finds the row of a line whose first characters are ASCII by comparing bytes, letters without
// regard to case, without folding the line first: nearly every line is such a line, and most
// keywords differ from it in their first bytes. kNotAscii when a byte outside ASCII comes up
// before a row is decided, since a few other characters lower-case to ASCII letters.
QuickMatch MatchAscii(std::string_view trimmed, std::size_t& found) {
  const auto fold = [](unsigned char byte) {
    return static_cast<char>(byte | (static_cast<unsigned>(byte - 'A') < 26u ? 0x20 : 0));
  };
  const auto first = static_cast<unsigned char>(trimmed[0]);
  if (first >= 0x80) return QuickMatch::kNotAscii;
  const char letter = fold(first);
  if (letter < 'a' || letter > 'z') return QuickMatch::kNone;
  const auto index = static_cast<std::size_t>(letter - 'a');
  for (std::size_t r = 0; r < kRowsByFirstLetter.count[index]; ++r) {
    const std::size_t row = kRowsByFirstLetter.rows[index][r];
    const std::string_view keyword = kStatements[row].keyword;
    if (trimmed.size() < keyword.size()) continue;
    std::size_t at = 1;
    for (; at < keyword.size(); ++at) {
      const auto byte = static_cast<unsigned char>(trimmed[at]);
      if (byte >= 0x80) return QuickMatch::kNotAscii;
      if (fold(byte) != keyword[at]) break;
    }
    if (at < keyword.size()) continue;
    if (kStatements[row].match == Match::kWhole &&
        !TrimView(trimmed.substr(keyword.size())).empty()) {
      continue;
    }
    found = row;
    return QuickMatch::kFound;
  }
  return QuickMatch::kNone;
}

// Whether the statement of a row reads its parameter through the substitution passes before
// it does anything else, so that the parameter can be made for it beforehand.
bool SubstitutesParameterFirst(const StatementRow& row) {
  return row.match == Match::kPrefix && row.handler != If && row.handler != Do &&
         row.handler != Exec && row.handler != Wait && row.handler != AdvFunc &&
         row.handler != PlayerWin && row.handler != PlayerLose;
}

// The pattern of a parameter that holds only well-formed references to numeric variables (no
// "#", "~" or "$", no "%%"); any other parameter goes through the passes every round.
ParameterPattern MakeParameterPattern(std::string_view line) {
  ParameterPattern pattern;
  std::string_view parameter;
  if (!CutParameter(line, parameter)) return pattern;
  if (parameter.find_first_of("#~$") != std::string_view::npos) return pattern;
  std::size_t pos = 0;
  while (true) {
    const std::size_t open = parameter.find('%', pos);
    if (open == std::string_view::npos) break;
    const std::size_t close = parameter.find('%', open + 1);
    if (close == std::string_view::npos || close == open + 1) return pattern;
    pattern.pieces.push_back(
        {parameter.substr(pos, open - pos), parameter.substr(open + 1, close - open - 1)});
    pos = close + 1;
  }
  pattern.tail = parameter.substr(pos);
  pattern.usable = true;
  return pattern;
}

// Puts the values into `pattern` as the substitution passes would. False when the passes must
// run instead: a variable is undefined (which they log), a value holds a delimiter a later pass
// would act on, or the text is long enough to be charged for.
bool FillParameter(Game& game, const ParameterPattern& pattern, std::string& out) {
  out.clear();
  for (const ParameterPattern::Piece& piece : pattern.pieces) {
    out.append(piece.text);
    const VariableEntry* entry = FindVariable(game.variables.numerics, piece.name);
    if (entry == nullptr) return false;
    for (const char c : entry->value) {
      if (c == '~' || c == '$') return false;
    }
    out.append(entry->value);
  }
  out.append(pattern.tail);
  return out.size() < kSubstitutedBytesPerStatement;
}

LoopBody PrepareLoopBody(std::string_view script) {
  LoopBody body;
  body.line = script;
  body.trimmed = TrimView(script);
  body.matched = !body.trimmed.empty() && body.trimmed.find("\r\n") == std::string_view::npos &&
                 MatchAscii(body.trimmed, body.row) == QuickMatch::kFound;
  if (body.matched && SubstitutesParameterFirst(kStatements[body.row])) {
    body.pattern = MakeParameterPattern(body.line);
  }
  return body;
}

void RunLoopBody(Game& game, const LoopBody& body, std::string& parameter) {
  if (!body.matched) {
    ExecuteScript(game, body.line);
    return;
  }
  NestedScript nested(game);
  if (!nested.entered()) return;
  const StatementRow& row = kStatements[body.row];
  Statement statement{body.line, body.trimmed, body.trimmed.substr(row.keyword.size())};
  if (body.pattern.usable && FillParameter(game, body.pattern, parameter)) {
    statement.substituted = &parameter;
  }
  row.handler(game, statement);
}

void Dispatch(Game& game, std::string_view line, std::string_view trimmed) {
  std::size_t found = 0;
  switch (MatchAscii(trimmed, found)) {
    case QuickMatch::kFound: {
      const StatementRow& row = kStatements[found];
      row.handler(game, Statement{line, trimmed, trimmed.substr(row.keyword.size())});
      return;
    }
    case QuickMatch::kNone:
      if (trimmed.front() == '\'') return;  // a comment
      LogScriptError(game,
                     "Warning: Unrecognized keyword. Line reads: '" + QuotedForLog(trimmed) + "'");
      return;
    case QuickMatch::kNotAscii:
      break;
  }
  FoldedStart folded;
  FoldStart(trimmed, folded);
  const char first = folded.chars[0];
  if (first >= 'a' && first <= 'z') {
    const auto letter = static_cast<std::size_t>(first - 'a');
    for (std::size_t r = 0; r < kRowsByFirstLetter.count[letter]; ++r) {
      const StatementRow& row = kStatements[kRowsByFirstLetter.rows[letter][r]];
      const std::size_t length = row.keyword.size();
      if (folded.count < length || std::string_view(folded.chars, length) != row.keyword) {
        continue;
      }
      const std::string_view rest = trimmed.substr(folded.ends[length - 1]);
      if (row.match == Match::kWhole && !TrimView(rest).empty()) continue;
      row.handler(game, Statement{line, trimmed, rest});
      return;
    }
  }
  if (trimmed.front() == '\'') return;  // a comment
  LogScriptError(game,
                 "Warning: Unrecognized keyword. Line reads: '" + QuotedForLog(trimmed) + "'");
}

// A script of several lines is cut at every CR LF; each piece, trimmed, is a statement. Cutting
// a long script costs as much as building a text of its length.
void RunLines(Game& game, const std::string& script, const NestedScript& nested) {
  if (!ChargeStatements(game, static_cast<long>(script.size() / kSubstitutedBytesPerStatement))) {
    return;
  }
  std::size_t from = 0;
  while (from <= script.size()) {
    std::size_t end = script.find("\r\n", from);
    if (end == std::string::npos) end = script.size();
    const std::string_view piece = TrimView(std::string_view(script).substr(from, end - from));
    if (!piece.empty()) {
      ExecuteScript(game, piece);
      if (nested.MustStop()) return;
    }
    from = end + 2;
  }
}

}  // namespace

bool EnterNestedScript(Game& game) {
  RunState& run = game.run;
  if (run.unwinding) return false;
  if (run.script_depth >= kMaxScriptDepth) {
    run.unwinding = true;
    LogScriptError(game, "Error: Scripts are nested more than " + std::to_string(kMaxScriptDepth) +
                             " levels deep (does a procedure or function call itself?) - the "
                             "rest of the statement was skipped.");
    return false;
  }
  if (run.script_depth == 0) {
    run.statements_run = 0;
    run.lines_charged = game.text.lines_read;
  }
  ++run.script_depth;
  if (!ChargeStatements(game, 1)) {
    // Nothing runs, so nothing below will end the unwinding when it leaves.
    if (--run.script_depth == 0) run.unwinding = false;
    return false;
  }
  return true;
}

void LeaveNestedScript(Game& game) {
  RunState& run = game.run;
  if (run.script_depth > 0) --run.script_depth;
  if (run.script_depth == 0) run.unwinding = false;
}

NestedScript::NestedScript(Game& game) : game_(game), entered_(EnterNestedScript(game)) {
  depth_ = game.run.script_depth;
  games_opened_ = game.games_opened;
}

NestedScript::~NestedScript() {
  if (entered_) LeaveNestedScript(game_);
}

bool NestedScript::MustStop() const {
  // Opening another game (a saved game loaded by `exec <load>`) also starts the nesting count
  // afresh.
  return game_.run.unwinding || game_.games_opened != games_opened_ ||
         game_.run.script_depth != depth_;
}

void ExecuteScript(Game& game, std::string_view line) {
  const std::string_view trimmed = TrimView(line);
  if (trimmed.empty()) return;
  NestedScript nested(game);
  if (!nested.entered()) return;
  if (trimmed.find("\r\n") != std::string_view::npos) {
    // A copy: the statements may replace the text the script came from.
    RunLines(game, std::string(trimmed), nested);
    return;
  }
  Dispatch(game, line, trimmed);
}

void RunProcedure(Game& game, std::string_view name) {
  const BlockRange block = FindBlockByName(game, "procedure", name);
  if (!block.Found()) return;
  NestedScript nested(game);
  if (!nested.entered()) return;
  // Lines are fetched afresh each time: a statement may replace the game they belong to.
  for (int i = block.start + 1; i < block.end && i <= game.text.LineCount(); ++i) {
    ExecuteScript(game, game.text.Line(i));
    if (nested.MustStop()) return;
  }
}

void DisplayText(Game& game, std::string_view name) {
  const BlockRange block = FindBlockByName(game, "text", name);
  for (int i = block.start + 1; i < block.end && i <= game.text.LineCount(); ++i) {
    PrintText(game, game.text.Line(i));
    if (game.run.unwinding) return;  // past the statement limit
  }
}

}  // namespace tarve
