#include "world/CommandParser.h"

#include <algorithm>
#include <array>

#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Substitution.h"
#include "interpreter/Variables.h"
#include "output/Output.h"
#include "script/CommonCode.h"
#include "world/PlayerMessages.h"
#include "world/Verbs.h"
#include "world/World.h"

namespace tarve {

namespace {

// The delimiter that the matcher puts around a command and a pattern, so that the first literal
// piece can only match at the start and the last only at the end: the broken bar, U+00A6.
constexpr std::string_view kMatchDelimiter = "\xC2\xA6";
// Capturing the values uses a full stop instead. A command that holds a full stop therefore
// captures differently from how it matched; games have always seen it so.
constexpr std::string_view kCaptureDelimiter = ".";

// The text after `prefix` in a text that begins with it by the begins-with test: the leading
// blanks are skipped, then as many characters as the prefix has.
std::string_view AfterPrefix(std::string_view text, std::string_view prefix) {
  text = TrimLeftView(text);
  return text.substr(std::min(text.size(), ByteOffsetOfChar(text, CharCount(prefix))));
}

// The text after the first ">" of a line, trimmed: the script of a command, use or give line.
std::string_view AfterParameter(std::string_view line) {
  const std::size_t close = line.find('>');
  if (close == std::string_view::npos) return {};
  return TrimView(line.substr(close + 1));
}

// Walks the literal pieces of a delimited pattern: the text before the first "#", the text
// between the closing "#" of one variable and the opening "#" of the next, and the text after
// the last variable. `visit(literal, variable)` gets each piece with the name of the variable
// that follows it ("" after the last piece) and stops the walk by returning false. A "#"
// without a closing partner is literal text.
template <typename Visit>
void ForEachPatternPiece(std::string_view pattern, Visit visit) {
  std::size_t literal_start = 0;
  while (true) {
    const std::size_t open = pattern.find('#', literal_start);
    const std::size_t close = open == std::string_view::npos ? open : pattern.find('#', open + 1);
    if (close == std::string_view::npos) {
      visit(pattern.substr(literal_start), std::string_view());
      return;
    }
    if (!visit(pattern.substr(literal_start, open - literal_start),
               pattern.substr(open + 1, close - open - 1))) {
      return;
    }
    literal_start = close + 1;
  }
}

std::string Delimited(std::string_view text, std::string_view delimiter) {
  std::string out;
  out.reserve(text.size() + 2 * delimiter.size());
  out.append(delimiter).append(text).append(delimiter);
  return out;
}

// Finds a literal piece of a pattern as written in the command; a piece written with capitals
// is found in the lower-cased command too. Gives the start and end bytes of the match.
bool FindPiece(std::string_view command, std::string_view piece, std::size_t from,
               std::size_t& start, std::size_t& end) {
  std::size_t at = command.find(piece, from);
  if (at == std::string_view::npos) at = FindNoCase(command, piece, from);
  if (at == std::string_view::npos) return false;
  start = at;
  end = std::min(command.size(), at + piece.size());
  return true;
}

BlockRange CurrentRoomBlock(Game& game) {
  return FindBlockByName(game, "room", game.world.current_room);
}

// The parameter of a game line with substitution, or false when the line has no <...> pair
// (a line such as "placement" that only begins like a keyword).
bool SubstitutedParameter(Game& game, std::string_view line, std::string& parameter) {
  std::string_view raw;
  if (!CutParameter(line, raw)) return false;
  parameter = SubstituteAll(game, raw);
  return true;
}

// The command lines of a block, found once per game.
const std::vector<CommandPattern>& CommandPatternsOf(Game& game, BlockRange block) {
  auto [it, added] = game.parser.command_patterns.try_emplace(block.start);
  if (!added) return it->second;
  const int last = std::min(block.end - 1, game.text.LineCount());
  for (int i = block.start + 1; i <= last; ++i) {
    const std::string& line = game.text.Line(i);
    std::string_view pattern;
    if (!BeginsWith(line, "command") || !CutParameter(line, pattern)) continue;
    it->second.push_back({i, LCase(pattern)});
  }
  return it->second;
}

bool TryCommandsOfBlock(Game& game, BlockRange block, std::string_view command) {
  if (!block.Found()) return false;
  for (const CommandPattern& pattern : CommandPatternsOf(game, block)) {
    if (!PatternMatches(command, pattern.lowered)) continue;
    // A copy: the script may load a saved game, which replaces the text the line came from.
    const std::string line = game.text.Line(pattern.line);
    std::string_view written;
    CutParameter(line, written);
    CapturePatternVariables(game, command, written);
    ExecuteScript(game, AfterParameter(line));
    return true;
  }
  return false;
}

void PrintHelp(Game& game) {
  static constexpr std::array<std::string_view, 11> kHelp = {
      "|jc-=-",
      "|b|cl|s18|uUSING TARVE:|xb|cb|s00|xu",
      "",
      "\xC2\xB7 To move, you can press the arrow buttons on this window, you can type "
      "|b[GO] NORTH/SOUTH/|xbetc., or just type |bN, S, E|xb or |bW|xb.",
      "\xC2\xB7 To go into a place, type |bGO TO ...|xb . To leave a place, type |bOUT, EXIT|xb "
      "or |bLEAVE|xb, or press the '|crOUT|cb' button.",
      "\xC2\xB7 You can interact with people and objects using |bTAKE ...; GIVE ... TO ...; "
      "TALK/SPEAK TO ...; USE ... ON/WITH ...; LOOK [AT ...];|xb plus several others - just use "
      "your common sense!",
      "\xC2\xB7 You can type |bQUIT|xb to leave Tarve.",
      "\xC2\xB7 Type |bABOUT|xb to get information on the current game.",
      "\xC2\xB7 Press |crF12|cb to bring up the last command you typed (if you made a mistake and "
      "want to edit it); press |crF11|cb to clear it.",
      "-=-",
      "|jl",
  };
  SetOutputFont(game, "Verdana");
  for (std::string_view line : kHelp) PrintText(game, line);
  SetOutputFont(game, game.output.current_default_font_name);
}

void PrintAbout(Game& game) {
  const BlockRange block = FindBlock(game, "game");
  PrintText(game, "");
  PrintText(game, "|bGame name:|cr  " + game.run.game_name + "|cb");
  PrintText(game, "|bVersion:|xb    " + FindTagInBlock(game, block, "game version"));
  PrintText(game, "|bAuthor:|xb     " + FindTagInBlock(game, block, "game author"));
  PrintText(game, "|bCopyright:|xb  " + FindTagInBlock(game, block, "game copyright"));
  PrintText(game, "");
  PrintText(game, FindTagInBlock(game, block, "game info"));
  PrintText(game, "");
}

void PrintVersion(Game& game) {
  PrintText(game, std::string("Tarve ") + kPlayerVersion);
  PrintText(game, "Interpreter for GWL version " + std::to_string(kLanguageVersion) +
                      "; current file uses GWL version" + FormatIntSigned(game.run.game_version));
}

// The diagonal directions and every whole command that goes there.
struct Diagonal {
  std::string_view direction;
  std::array<std::string_view, 8> commands;
};
constexpr std::array<Diagonal, 4> kDiagonals = {{
    {"northeast",
     {"ne", "northeast", "north-east", "north east", "go ne", "go northeast", "go north-east",
      "go north east"}},
    {"northwest",
     {"nw", "northwest", "north-west", "north west", "go nw", "go northwest", "go north-west",
      "go north west"}},
    {"southeast",
     {"se", "southeast", "south-east", "south east", "go se", "go southeast", "go south-east",
      "go south east"}},
    {"southwest",
     {"sw", "southwest", "south-west", "south west", "go sw", "go southwest", "go south-west",
      "go south west"}},
}};

// Movement commands. True when the command was one (whatever its outcome).
bool TryMovement(Game& game, std::string_view command) {
  if (command == "out" || command == "exit" || command == "leave") {
    GoInDirection(game, "out");
    return true;
  }
  if (command == "north" || command == "south" || command == "east" || command == "west") {
    GoInDirection(game, command);
    return true;
  }
  if (command.size() == 1) {
    switch (command[0]) {
      case 'n':
        GoInDirection(game, "north");
        return true;
      case 's':
        GoInDirection(game, "south");
        return true;
      case 'w':
        GoInDirection(game, "west");
        return true;
      case 'e':
        GoInDirection(game, "east");
        return true;
      default:
        break;
    }
  }
  for (const Diagonal& diagonal : kDiagonals) {
    if (std::find(diagonal.commands.begin(), diagonal.commands.end(), command) !=
        diagonal.commands.end()) {
      GoInDirection(game, diagonal.direction);
      return true;
    }
  }
  if (!BeginsWith(command, "go ")) return false;
  // The one-letter directions are not accepted after "go": "go n" answers like any other
  // unknown use of "go".
  const std::string_view rest = AfterPrefix(command, "go ");
  if (rest == "out" || rest == "north" || rest == "south" || rest == "east" || rest == "west") {
    GoInDirection(game, rest);
  } else if (BeginsWith(rest, "to ")) {
    GoToPlace(game, AfterPrefix(rest, "to "));
  } else {
    PrintPlayerMessage(game, kBadGo);
  }
  return true;
}

// The interaction verbs, by the begins-with test. True when one took the command.
bool TryVerbs(Game& game, std::string_view command) {
  if (BeginsWith(command, "give ")) {
    GiveVerb(game, AfterPrefix(command, "give "));
  } else if (BeginsWith(command, "take ")) {
    TakeVerb(game, AfterPrefix(command, "take "));
  } else if (BeginsWith(command, "get ")) {
    TakeVerb(game, AfterPrefix(command, "get "));
  } else if (BeginsWith(command, "pick up ")) {
    TakeVerb(game, AfterPrefix(command, "pick up "));
  } else if (BeginsWith(command, "look")) {
    LookVerb(game, command);
  } else if (BeginsWith(command, "use ")) {
    UseVerb(game, command);
  } else {
    return false;
  }
  return true;
}

enum class WordResult { kNone, kDone, kQuit };

constexpr long kSavedGameStatements = 5000;

WordResult TryWholeCommandWords(Game& game, std::string_view command) {
  // "save", "load" and "quit" do what the program's Save and Load menus and closing the game's
  // window do.
  if (command == "save") {
    // Writing a saved game costs as much as many statements, so that a script that saves in a
    // loop stops soon.
    if (game.program && ChargeStatements(game, kSavedGameStatements)) game.program->Save();
  } else if (command == "load") {
    if (game.program) game.program->Load();
  } else if (command == "quit") {
    if (game.program && game.program->Quit()) return WordResult::kQuit;
  } else if (command == "help") {
    PrintHelp(game);
  } else if (command == "about") {
    PrintAbout(game);
  } else if (command == "clear") {
    game.host.pane.ClearOutput();
  } else if (command == "ver") {
    PrintVersion(game);
  } else {
    return WordResult::kNone;
  }
  return WordResult::kDone;
}

}  // namespace

void ReadSynonyms(Game& game) {
  game.parser.synonyms.clear();
  game.parser.command_patterns.clear();  // a new game text
  const BlockRange block = FindBlock(game, "synonyms");
  if (!block.Found()) return;
  const int last = std::min(block.end - 1, game.text.LineCount());
  for (int i = block.start + 1; i <= last; ++i) {
    const std::string_view line = TrimView(game.text.Line(i));
    if (line.empty() || line.front() == '\'') continue;
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
      LogScriptError(game,
                     "Warning: Synonym line without '=' ignored: '" + std::string(line) + "'");
      continue;
    }
    const std::string replacement = Trim(line.substr(equals + 1));
    std::string_view words = line.substr(0, equals);
    while (true) {
      const std::size_t semicolon = words.find(';');
      // An empty word (`; grab = take`) is a synonym too: padded with its two blanks it matches
      // only two blanks in a row, never the single blank between words.
      game.parser.synonyms.push_back({Trim(words.substr(0, semicolon)), replacement});
      if (semicolon == std::string_view::npos) break;
      words = words.substr(semicolon + 1);
    }
  }
}

void ReadTurnScripts(Game& game) {
  ParserState& parser = game.parser;
  parser.before_turn_script.clear();
  parser.after_turn_script.clear();
  const BlockRange block = FindBlock(game, "game");
  if (!block.Found()) return;
  const int last = std::min(block.end - 1, game.text.LineCount());
  for (int i = block.start + 1; i <= last; ++i) {
    const std::string& line = game.text.Line(i);
    std::string* script = nullptr;
    std::string_view keyword;
    if (BeginsWith(line, "beforeturn ")) {
      script = &parser.before_turn_script;
      keyword = "beforeturn ";
    } else if (BeginsWith(line, "afterturn ")) {
      script = &parser.after_turn_script;
      keyword = "afterturn ";
    } else {
      continue;
    }
    script->append(AfterPrefix(TrimView(line), keyword));
    script->append("\r\n");
  }
}

std::string ApplySynonyms(Game& game, std::string_view command) {
  // Pad the command with blanks so that only whole words match a synonym. A replacement that
  // contains its own word would loop for ever, so the number of replacements is capped.
  std::string text = Delimited(command, " ");
  std::string key;
  std::string replacement;
  int replacements = 0;
  for (const Synonym& synonym : game.parser.synonyms) {
    key.assign(" ").append(synonym.word).append(" ");
    std::size_t at = text.find(key);
    if (at == std::string::npos) continue;
    replacement.assign(" ").append(synonym.replacement).append(" ");
    for (; at != std::string::npos; at = text.find(key)) {
      if (replacements == kMaxSynonymReplacements) {
        LogScriptError(game, "Error: More than " + std::to_string(kMaxSynonymReplacements) +
                                 " synonym replacements in one command; the synonym '" +
                                 synonym.word +
                                 "' may contain its own word. The rest of the command was left "
                                 "as it stood.");
        return text.substr(1, text.size() - 2);
      }
      text.replace(at, key.size(), replacement);
      ++replacements;
    }
  }
  return text.substr(1, text.size() - 2);
}

void ExecuteCommand(Game& game, std::string& command, bool echo, bool try_game_commands,
                    bool from_script) {
  ParserState& parser = game.parser;
  if (command.empty() || parser.paused) return;
  if (parser.waiting_for_input) {
    // The line answers an `enter` statement: it goes to the variable as typed.
    SetStringVariable(game, parser.input_variable, command);
    game.host.window.ClearCommandBox();
    game.host.window.FocusCommandBox();
    parser.waiting_for_input = false;
    return;
  }
  if (echo) PrintText(game, "> " + command);

  command = LCase(command);
  SetStringVariable(game, "tarve.originalcommand", command);
  if (!parser.synonyms.empty()) command = ApplySynonyms(game, command);
  SetStringVariable(game, "tarve.command", command);

  if (!from_script && !parser.before_turn_script.empty()) {
    ExecuteScript(game, parser.before_turn_script);
  }

  if (!(try_game_commands && TryGameCommands(game, command))) {
    if (BeginsWith(command, "speak to ")) {
      SpeakVerb(game, AfterPrefix(command, "speak to "));
    } else if (BeginsWith(command, "talk to ")) {
      SpeakVerb(game, AfterPrefix(command, "talk to "));
    } else if (!TryMovement(game, command) && !TryVerbs(game, command)) {
      switch (TryWholeCommandWords(game, command)) {
        case WordResult::kQuit:
          return;  // the game is closed: there is no end of turn
        case WordResult::kNone:
          PrintPlayerMessage(game, kBadCommand);
          break;
        case WordResult::kDone:
          break;
      }
    }
  }

  // The end of the turn.
  if (from_script) return;
  if (echo && game.output.blank_line_after_turn) PrintText(game, "");
  game.host.window.ClearCommandBox();
  game.host.window.FocusCommandBox();
  if (!parser.after_turn_script.empty()) ExecuteScript(game, parser.after_turn_script);
}

void ExecuteExec(Game& game, std::string_view line) {
  if (game.run.unwinding) return;
  std::string parameter = RetrieveParameter(game, line, true);
  bool normal = false;
  if (const std::size_t semicolon = parameter.find(';'); semicolon != std::string::npos) {
    const std::string mode = LCase(TrimView(std::string_view(parameter).substr(semicolon + 1)));
    if (mode != "normal") {
      LogScriptError(game, "Error: Unrecognised post-command parameter in " + Trim(line));
      return;
    }
    normal = true;
    parameter.resize(semicolon);
  }
  std::string command = Trim(parameter);
  // The "normal" mode gives the command only the built-in handling, so that a game's command
  // line can hand its own command back to the built-in verb. A command that runs itself again
  // through a game's command line is cut by the depth guard.
  if (!EnterNestedScript(game)) return;
  ExecuteCommand(game, command, /*echo=*/false, /*try_game_commands=*/!normal,
                 /*from_script=*/true);
  LeaveNestedScript(game);
}

bool TryGameCommands(Game& game, std::string_view command) {
  // The current room's commands shadow the game's own.
  return TryCommandsOfBlock(game, CurrentRoomBlock(game), command) ||
         TryCommandsOfBlock(game, FindBlock(game, "game"), command);
}

bool PatternMatches(std::string_view command, std::string_view pattern) {
  const std::string text = Delimited(TrimView(command), kMatchDelimiter);
  const std::string delimited = Delimited(pattern, kMatchDelimiter);
  std::size_t from = 0;
  bool matches = true;
  // The first occurrence of each piece is taken, with no going back: "open #a# with #b#" binds
  // b to "key with care" in "open box with key with care".
  ForEachPatternPiece(delimited, [&](std::string_view literal, std::string_view) {
    const std::size_t at = text.find(literal, from);
    if (at == std::string::npos) return matches = false;
    from = at + literal.size();
    return true;
  });
  return matches;
}

void CapturePatternVariables(Game& game, std::string_view command, std::string_view pattern) {
  const std::string text = Delimited(TrimView(command), kCaptureDelimiter);
  const std::string delimited = Delimited(pattern, kCaptureDelimiter);
  // A piece that cannot be found (the capture's delimiter differs from the matcher's) is taken
  // to stand at the end of the command, so the variable before it gets the rest of the command
  // and any later ones the empty text.
  const std::size_t end_of_command = text.size() - kCaptureDelimiter.size();
  std::size_t from = 0;
  std::string_view variable;  // the variable waiting for the piece after it
  bool first = true;
  ForEachPatternPiece(delimited, [&](std::string_view literal, std::string_view next_variable) {
    std::size_t start = 0;
    std::size_t end = 0;
    if (!FindPiece(text, literal, from, start, end)) start = end = std::max(from, end_of_command);
    if (!first)
      SetStringVariable(game, variable, std::string_view(text).substr(from, start - from));
    first = false;
    variable = next_variable;
    from = end;
    return true;
  });
}

void GoInDirection(Game& game, std::string_view direction) {
  const BlockRange room = CurrentRoomBlock(game);
  const bool out = direction == "out";
  const int last = std::min(room.end - 1, game.text.LineCount());
  for (int i = room.start + 1; room.Found() && i <= last; ++i) {
    if (!BeginsWith(game.text.Line(i), direction)) continue;
    // The first line that begins with the word is the exit; a "northeast" line written before
    // the "north" line also answers "north".
    const std::string line = game.text.Line(i);
    const std::string_view rest = TrimView(AfterPrefix(line, direction));
    std::string_view script;
    if (out) {
      // "out <room>" leads there; "out <room> script" runs the script instead.
      const std::size_t close = rest.find('>');
      script = close == std::string_view::npos ? rest : TrimView(rest.substr(close + 1));
    } else if (rest.empty() || rest.front() != '<') {
      // Anything but a room is a script, run as it is: "north" alone runs nothing.
      ExecuteScript(game, rest);
      return;
    }
    if (!script.empty()) {
      ExecuteScript(game, script);
      return;
    }
    // A room the game never defines is entered all the same, described by its name alone.
    std::string target;
    if (!SubstitutedParameter(game, line, target)) break;  // "out" alone: no way out here
    EnterRoom(game, target);
    return;
  }
  PrintPlayerMessage(game, out ? kDefaultOut : kBadPlace);
}

void GoToPlace(Game& game, std::string_view place) {
  std::string found = FindPlace(game, place);
  if (found.empty() && StartsWithNoCase(place, "the ")) found = FindPlace(game, place.substr(4));
  if (found.empty()) {
    PrintPlayerMessage(game, kBadPlace);
    return;
  }
  if (const std::size_t semicolon = found.find(';'); semicolon != std::string::npos) {
    ExecuteScript(game, TrimView(std::string_view(found).substr(semicolon + 1)));
    return;
  }
  EnterRoom(game, found);
}

std::string FindPlace(Game& game, std::string_view place) {
  const BlockRange room = CurrentRoomBlock(game);
  if (!room.Found()) return {};
  const std::string wanted = LCase(place);
  std::string result;
  std::string parameter;
  const int last = std::min(room.end - 1, game.text.LineCount());
  for (int i = room.start + 1; i <= last; ++i) {
    const std::string& line = game.text.Line(i);
    if (!BeginsWith(line, "place") || !SubstitutedParameter(game, line, parameter)) continue;
    // "place <the; Kitchen>" names the place Kitchen; the text before ";" is only shown.
    const std::size_t semicolon = parameter.find(';');
    const std::string name =
        semicolon == std::string::npos ? parameter : Trim(parameter.substr(semicolon + 1));
    if (LCase(name) != wanted) continue;
    // The last matching line wins.
    const std::string_view script = AfterParameter(line);
    result = script.empty() ? name : name + ";" + std::string(script);
  }
  return result;
}

}  // namespace tarve
