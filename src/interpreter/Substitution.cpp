#include "interpreter/Substitution.h"

namespace tarve {

// Variables, collectables and functions arrive with the interpreter; until then a parameter is
// used as written.
std::string SubstituteAll(Game&, std::string_view text) { return std::string(text); }

}  // namespace tarve
