#include "interpreter/ExecuteScript.h"

#include "script/Game.h"

namespace tarve {

void ExecuteScript(Game&, std::string_view) {}
void RunProcedure(Game&, std::string_view) {}
void DisplayText(Game&, std::string_view) {}
bool EnterNestedScript(Game&) { return false; }
void LeaveNestedScript(Game&) {}

}  // namespace tarve
