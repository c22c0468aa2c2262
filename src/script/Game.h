// One game and the player run around it: every table the player works on lives here, so that
// nothing is global and two games can live side by side.
#pragma once

#include <string>

#include "interpreter/ScriptLog.h"
#include "script/CommonCode.h"
#include "script/Host.h"

namespace tarve {

// The player's own version, shown after "Tarve " in the log, the caption and "ver".
inline constexpr const char* kPlayerVersion = "2.17";

struct Game {
  explicit Game(Host& host_in) : host(host_in) {}
  Game(const Game&) = delete;
  Game& operator=(const Game&) = delete;

  Host& host;

  // Kept for the whole run of the program.
  ScriptLogState log;
  std::string program_folder;  // the data folder: tarve.dat, libraries' second home
  bool game_was_open = false;

  // The open game.
  GameText text;
  std::string game_file;    // full path of the game file
  std::string game_path;    // its folder, with a trailing "/"
  int intproc_counter = 1;  // names the procedures made from brace blocks
};

// Empties every table of the open game, keeping what lasts for the whole run.
void ResetGameTables(Game& game);

}  // namespace tarve
