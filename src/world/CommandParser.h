// The command parser: one whole turn for each command the player types, the game's command
// patterns, movement, and the whole-command words.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarve {

struct Game;

struct Synonym {
  std::string word;
  std::string replacement;
};

// A replacement that holds its own word would be replaced again for ever: a turn makes at most
// this many synonym replacements.
inline constexpr int kMaxSynonymReplacements = 1000;

// The `command` lines of one block, found the first time a turn looks at the block: the game
// text never changes once read, so later turns only walk these.
struct CommandPattern {
  int line = 0;
  std::string lowered;  // the pattern, lower-cased for matching
};

struct ParserState {
  std::vector<Synonym> synonyms;
  std::string before_turn_script;  // lines joined with CR LF after each
  std::string after_turn_script;
  bool waiting_for_input = false;  // an `enter` statement waits for a line
  std::string input_variable;
  bool paused = false;
  // Command lines by the first line of their room or game block.
  std::unordered_map<int, std::vector<CommandPattern>> command_patterns;
};

// At game opening.
void ReadSynonyms(Game& game);
void ReadTurnScripts(Game& game);

// One turn. `command` is changed in place (lower-cased, synonyms applied). `from_script` is set
// for a command that a script runs with exec: it is part of the turn already running, so the
// turn scripts and the end of the turn are left to that turn.
void ExecuteCommand(Game& game, std::string& command, bool echo, bool try_game_commands,
                    bool from_script = false);
// exec <command> and exec <command; normal>: `line` is the whole statement.
void ExecuteExec(Game& game, std::string_view line);

// Replaces whole words by their synonyms in `command` (lower-cased, not padded).
std::string ApplySynonyms(Game& game, std::string_view command);

bool TryGameCommands(Game& game, std::string_view command);
bool PatternMatches(std::string_view command, std::string_view pattern);
void CapturePatternVariables(Game& game, std::string_view command, std::string_view pattern);
void GoInDirection(Game& game, std::string_view direction);
void GoToPlace(Game& game, std::string_view place);
std::string FindPlace(Game& game, std::string_view place);

}  // namespace tarve
