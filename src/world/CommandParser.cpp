#include "world/CommandParser.h"

#include "script/Game.h"

namespace tarve {

void ReadSynonyms(Game&) {}
void ReadTurnScripts(Game&) {}
void ExecuteCommand(Game&, std::string&, bool, bool, bool) {}
void ExecuteExec(Game&, std::string_view) {}
bool TryGameCommands(Game&, std::string_view) { return false; }
bool PatternMatches(std::string_view, std::string_view) { return false; }
void CapturePatternVariables(Game&, std::string_view, std::string_view) {}
void GoInDirection(Game&, std::string_view) {}
void GoToPlace(Game&, std::string_view) {}
std::string FindPlace(Game&, std::string_view) { return {}; }

}  // namespace tarve
