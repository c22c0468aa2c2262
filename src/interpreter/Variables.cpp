#include "interpreter/Variables.h"

#include "script/Game.h"

namespace tarve {

void SetStringVariable(Game&, std::string_view, std::string_view) {}
void SetNumericVariable(Game&, std::string_view, int16_t) {}
std::string GetStringVariable(Game&, std::string_view) { return {}; }
int16_t GetNumericVariable(Game&, std::string_view) { return 0; }
const VariableEntry* FindVariable(const VariableTable&, std::string_view) { return nullptr; }
void ExecuteSetString(Game&, std::string_view) {}
void ExecuteSetVar(Game&, std::string_view) {}

}  // namespace tarve
