#include "interpreter/Functions.h"

#include "script/Game.h"

namespace tarve {

std::string CallFunction(Game&, std::string_view) { return {}; }

}  // namespace tarve
