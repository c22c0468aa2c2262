// Functions: $name(parameters)$ references call the game's own function blocks or the built-in
// functions.
#pragma once

#include <string>
#include <string_view>

namespace tarve {

struct Game;

// `text` is what stands between the two "$": a name, optionally with "(p1; p2; ...)".
std::string CallFunction(Game& game, std::string_view text);

}  // namespace tarve
