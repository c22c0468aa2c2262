#include "interpreter/Conditions.h"

#include "script/Game.h"

namespace tarve {

void ExecuteCondition(Game&, std::string_view) {}

}  // namespace tarve
