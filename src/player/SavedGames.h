// Saved games: the .tsg file that records the changeable state of a running game (room,
// collectables, items, where each object and character is, and every variable), written by
// SaveGame and laid back over a freshly opened game by LoadSavedGame.
#pragma once

#include <cstddef>
#include <string>

#include "interpreter/Variables.h"

namespace tarve {

struct Game;

// The first line of every saved game this player writes and reads.
inline constexpr const char* kSavedGameHeader = "TARVE200.1";

// A saved game holds a few lines per thing and variable: at most what the variables may hold
// (kMaxVariablesBytes counts what their lines take) and 16 MB for everything else. A larger file
// is not a saved game and is refused before it is read, so that a stray huge file never stalls
// the player; a game whose state would be larger is not saved, so that every saved game loads.
inline constexpr std::size_t kMaxSavedGameBytes = kMaxVariablesBytes + (std::size_t{16} << 20);

// The saved-game text of the game as it stands: UTF-8, every line ended by CR LF.
std::string SavedGameText(const Game& game);

// Writes the open game to `path` through a temporary file, so that the previous file survives a
// failure, and remembers `path` as the current saved game. False, after a message box, when the
// file cannot be written, would pass kMaxSavedGameBytes, or no game is open.
bool SaveGame(Game& game, const std::string& path);

// Reads the saved game at `path`, opens its game file afresh and restores the saved state over
// it. The whole file is read and checked before anything is changed: an unreadable, damaged or
// foreign file, or a game file that is no longer there, leaves the game in progress exactly as
// it was, with a message box. True when the saved game was loaded.
bool LoadSavedGame(Game& game, const std::string& path);

}  // namespace tarve
