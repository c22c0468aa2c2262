// Describing a room: the standard description, the tarve. variables it publishes, the exits
// given to the window, or the game's own description script.
#pragma once

#include <string_view>

namespace tarve {

struct Game;

void DescribeRoom(Game& game, std::string_view room);
// Tells the host which characters, objects and places are here.
void RefreshThingsHere(Game& game);

}  // namespace tarve
