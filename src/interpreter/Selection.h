// Choice menus: a `define selection` block offered with `choose <name>`; the player picks one
// answer in a dialog, the answer is echoed, and its script runs.
#pragma once

#include <string>
#include <string_view>

namespace tarve {

struct Game;

// Offers the selection of that name and returns the script of the answer the player picked
// ("" when nothing was picked or there was nothing to pick).
std::string ShowSelection(Game& game, std::string_view name);

// choose <name>: offers the selection and runs the picked answer's script.
void ExecuteChoose(Game& game, std::string_view name);

}  // namespace tarve
