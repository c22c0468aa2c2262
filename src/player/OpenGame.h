// Opening a game: the one entry that turns a game file into the open game.
#pragma once

#include <string>

namespace tarve {

struct Game;

// A start script that opens a game while a game is being opened (a saved game loaded from a
// start script) nests one opening in another; past this depth the opening is refused.
inline constexpr int kMaxNestedOpenings = 4;

// Reads the game file into the game's tables, with its messages when it cannot be used
// ("Unable to open" + path, in the log and in a message box).
bool LoadGameText(Game& game, const std::string& path);

// Opens the game at `path`: resets the previous game, reads the file, checks its language
// version, builds the world, runs the start scripts, shows the introduction and enters the
// start room. `installed` tells that the game was started from the installed-games list. False
// when the game cannot be opened; no game is open then, unless `keep_on_failure` asks to keep
// the game in progress: the new game is then read and checked before anything of the old one
// (its tables, its window, its sounds) changes, and a game that cannot be opened leaves it as
// it was.
bool OpenGame(Game& game, const std::string& path, bool installed = false,
              bool keep_on_failure = false);

}  // namespace tarve
