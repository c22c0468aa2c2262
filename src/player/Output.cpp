#include "player/Output.h"

#include "script/Game.h"

namespace tarve {

void PrintText(Game&, std::string_view) {}
void SetOutputFont(Game&, std::string_view) {}
void SetOutputFontSize(Game&, float) {}
void WriteOutputFile(Game&, std::string_view) {}
void WaitForKey(Game&, std::string_view) {}
void StartGameOutput(Game&) {}
void CloseOutputFile(Game&) {}

}  // namespace tarve
