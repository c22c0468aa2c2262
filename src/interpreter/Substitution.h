// Text substitution: the passes that replace #string#, %numeric%, ~collectable~ and $function$
// references in a parameter by their values.
#pragma once

#include <string>
#include <string_view>

namespace tarve {

struct Game;

// The four substitution passes, in their fixed order: string variables, numeric variables,
// collectables, functions.
std::string SubstituteAll(Game& game, std::string_view text);

}  // namespace tarve
