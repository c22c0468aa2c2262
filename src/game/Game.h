// One game and the player run around it: every table the player works on lives here, so that
// nothing is global and two games can live side by side. The few places where a lower part of
// the engine must reach a higher one (substitution runs functions, printing counts against a
// script's allowance, the player's "save" and "load" words reach the program) go through the
// slots and counters of this object.
#pragma once

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>

#include "game/Host.h"
#include "game/ScriptLog.h"
#include "game/Settings.h"
#include "interpreter/Variables.h"
#include "output/Output.h"
#include "script/CommonCode.h"
#include "script/KeywordTable.h"
#include "world/CommandParser.h"
#include "world/Items.h"
#include "world/PlayerMessages.h"
#include "world/World.h"

namespace tarve {

// The player's own version, shown after "Tarve " in the log, the caption and "ver", and the
// highest game-language version it knows, the same number without its point.
inline constexpr const char* kPlayerVersion = "2.17";
inline constexpr int kLanguageVersion = 217;

// Switches and flags of the running game and its scripts.
struct RunState {
  int16_t game_version = 0;
  std::string game_name;
  bool debug_allowed = true;
  bool show_intro = true;
  bool game_over = false;
  bool installed_game = false;  // started from the installed-games list
  std::string current_saved_game_path;

  // Nesting of statements and function calls; past kMaxScriptDepth the top-level statement is
  // abandoned (`unwinding`) and the turn goes on.
  int script_depth = 0;
  bool unwinding = false;
  // Statements, procedures and function calls begun since the current top-level statement
  // began; past Game::statement_limit that statement is abandoned as well.
  long statements_run = 0;
  // GameText::lines_read when the lines read were last charged as statements.
  long lines_charged = 0;
  // No more input can come (the terminal's input ended): waits end at once.
  bool input_ended = false;
};

// Nested statements (procedures, functions, room scripts) deeper than this are cut off.
inline constexpr int kMaxScriptDepth = 200;
// One top-level statement (a turn's command script, a room script, a start script) may run at
// most this many statements, procedures and function calls in all: nested loops and procedures
// that call each other many times over would otherwise freeze the player. Game::statement_limit
// holds it. Printed lines, long texts and reading the game's lines count as well
// (ChargeStatements).
inline constexpr long kMaxStatementsPerRun = 1000000;
// Scans cost one statement for this many lines of the game read or things looked at.
inline constexpr long kScannedPerStatement = 64;
// Writing a message to the script log costs as much as this many statements: the log file is
// opened for every message.
inline constexpr long kLoggedMessageStatements = 16;
// Game::total_statement_limit when nothing bounds the statements of a whole game.
inline constexpr long kNoTotalStatementLimit = std::numeric_limits<long>::max();

// The player's words that reach past the game to the program around it: "save", "load" and
// "quit" do what the Save and Load menus and closing the game's window do. The application
// answers them; where there is none (the engine on its own in a tool) they do nothing.
class ProgramCommands {
 public:
  virtual ~ProgramCommands() = default;
  virtual void Save() = 0;
  virtual void Load() = 0;
  // Asks whether to leave the game; true when the player confirmed and the game is closed.
  virtual bool Quit() = 0;
};

struct Game {
  explicit Game(Host host_in);
  Game(const Game&) = delete;
  Game& operator=(const Game&) = delete;

  Host host;
  ProgramCommands* program = nullptr;
  // Substitutes variables, collectables and function calls into a text; the game-text
  // primitives reach the interpreter through it.
  std::string (*substitute_all)(Game& game, std::string_view text);

  // Kept for the whole run of the program.
  Settings settings;
  ScriptLogState log;
  OutputState output;
  std::string program_folder;  // the data folder: tarve.dat, libraries' second home
  KeywordTable keywords;       // of compiled games, from tarve.dat
  bool game_was_open = false;
  // Games read by OpenGame in this run, and how deeply OpenGame is running inside itself (a
  // start script that loads a saved game opens a game within the opening of another).
  int games_opened = 0;
  int open_game_depth = 0;
  std::mt19937 random{5489u};
  // The most statements, procedures and function calls one top-level statement may run; tools
  // that must bound their work per input lower it.
  long statement_limit = kMaxStatementsPerRun;
  // Statements and calls run since this Game was made, and the most it may ever run: no limit
  // in the player; tools that must bound their work per input (the fuzzers) set one.
  long statements_total = 0;
  long total_statement_limit = kNoTotalStatementLimit;

  // The open game.
  GameText text;
  std::string game_file;    // full path of the game file
  std::string game_path;    // its folder, with a trailing "/"
  int intproc_counter = 1;  // names the procedures made from brace blocks
  RunState run;
  Variables variables;
  World world;
  Inventory inventory;
  PlayerMessages messages;
  ParserState parser;
};

// Empties every table of the open game, keeping what lasts for the whole run.
void ResetGameTables(Game& game);

// Counts `count` statements against the running top-level statement's limit and the game's
// total limit, with one more for every kScannedPerStatement lines of the game read since the
// last charge. Past either, the rest of the top-level statement is abandoned (logged once) and
// the result is false. Outside every statement it counts nothing.
bool ChargeStatements(Game& game, long count);

}  // namespace tarve
