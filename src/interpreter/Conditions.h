// The if statement: its tests, the and/or connectors, and the then/else scripts.
#pragma once

#include <string_view>

namespace tarve {

struct Game;

void ExecuteCondition(Game& game, std::string_view line);

}  // namespace tarve
