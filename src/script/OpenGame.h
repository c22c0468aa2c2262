// Opening a game: the one entry that turns a game file into the open game.
#pragma once

#include <string>

namespace tarve {

struct Game;

// Reads the game file into the game's tables, with its messages when it cannot be used
// ("Unable to open" + path, in the log and in a message box).
bool LoadGameText(Game& game, const std::string& path);

// Opens the game at `path`: resets the previous game, logs the opening and reads the file.
// False when the game cannot be opened.
bool OpenGame(Game& game, const std::string& path);

}  // namespace tarve
