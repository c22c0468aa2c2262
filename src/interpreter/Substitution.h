// Text substitution: the passes that replace #string#, %numeric%, ~collectable~ and $function$
// references in a parameter by their values.
#pragma once

#include <string>
#include <string_view>

namespace tarve {

struct Game;

enum class SubstitutionKind { kString = 1, kFunction = 2, kNumeric = 3, kCollectable = 4 };

// One pass over `text` for one delimiter.
std::string Substitute(Game& game, std::string_view text, char delimiter, SubstitutionKind kind);

// The four passes, in their fixed order: string variables, numeric variables, collectables,
// functions.
std::string SubstituteAll(Game& game, std::string_view text);

}  // namespace tarve
