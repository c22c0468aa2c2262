// The player's own commands in the terminal: lines that begin with "#" (restart, save, load,
// transcript, help, quit). A game's command patterns cannot hold "#" as text, so no game's
// command is ever taken for one.
#pragma once

#include <string>

namespace tarve {

class Player;
class TerminalHost;

// Runs `line` ("#name argument") as a player command; an unknown name gets a hint.
void RunPlayerCommand(TerminalHost& host, Player& player, const std::string& line);

}  // namespace tarve
