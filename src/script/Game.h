// One game and the player run around it: every table the player works on lives here, so that
// nothing is global and two games can live side by side.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "interpreter/ExecuteScript.h"
#include "interpreter/ScriptLog.h"
#include "interpreter/Variables.h"
#include "player/MainWindow.h"
#include "player/Output.h"
#include "player/Settings.h"
#include "script/CommonCode.h"
#include "script/Host.h"
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
  bool opened_from_command_line = false;
  std::string current_saved_game_path;

  // Nesting of statements and function calls; past kMaxScriptDepth the top-level statement is
  // abandoned (`unwinding`) and the turn goes on.
  int script_depth = 0;
  bool unwinding = false;
  // Statements, procedures and function calls begun since the current top-level statement
  // began; past Game::statement_limit that statement is abandoned as well.
  long statements_run = 0;
  // No more input can come (the terminal's input ended): waits end at once.
  bool input_ended = false;
};

struct Game {
  explicit Game(Host& host_in) : host(host_in) {}
  Game(const Game&) = delete;
  Game& operator=(const Game&) = delete;

  Host& host;

  // Kept for the whole run of the program.
  Settings settings;
  ScriptLogState log;
  OutputState output;
  MainWindowState window;
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

}  // namespace tarve
