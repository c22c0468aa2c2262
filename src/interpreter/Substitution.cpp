#include "interpreter/Substitution.h"

#include "script/Game.h"

namespace tarve {

std::string Substitute(Game&, std::string_view, char, SubstitutionKind) { return {}; }
std::string SubstituteAll(Game&, std::string_view text) { return std::string(text); }

}  // namespace tarve
