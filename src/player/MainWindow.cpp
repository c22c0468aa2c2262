#include "player/MainWindow.h"

#include "script/Game.h"

namespace tarve {

void SubmitCommand(Game&, std::string_view) {}
void KeyPressed(Game&) {}
void PressDirectionButton(Game&, int) {}
void PressActionButton(Game&, int, std::string_view) {}
void EndAllWaits(Game&) {}

}  // namespace tarve
