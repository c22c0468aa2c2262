#include "world/PlayerMessages.h"

#include "script/Game.h"

namespace tarve {

void ResetPlayerMessages(Game&) {}
void ReadMessageOverrides(Game&) {}
void PrintPlayerMessage(Game&, int) {}

}  // namespace tarve
