// The command parser: one whole turn for each command the player types, the game's command
// patterns, movement, and the whole-command words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarve {

struct Game;

struct Synonym {
  std::string word;
  std::string replacement;
};

struct ParserState {
  std::vector<Synonym> synonyms;
  std::string before_turn_script;  // lines joined with CR LF after each
  std::string after_turn_script;
  bool waiting_for_input = false;  // an `enter` statement waits for a line
  std::string input_variable;
  bool paused = false;
};

// At game opening.
void ReadSynonyms(Game& game);
void ReadTurnScripts(Game& game);

// One turn. `command` is changed in place (lower-cased, synonyms applied). `normal` is the
// mode that "exec <command; normal>" asks for.
void ExecuteCommand(Game& game, std::string& command, bool echo, bool try_game_commands,
                    bool normal = false);
// exec <command> and exec <command; normal>: the line after "exec" is `parameter`.
void ExecuteExec(Game& game, std::string_view line);

bool TryGameCommands(Game& game, std::string_view command);
bool PatternMatches(std::string_view command, std::string_view pattern);
void CapturePatternVariables(Game& game, std::string_view command, std::string_view pattern);
void GoInDirection(Game& game, std::string_view direction);
void GoToPlace(Game& game, std::string_view place);
std::string FindPlace(Game& game, std::string_view place);

}  // namespace tarve
