// The "save" and "load" commands. Saved games arrive in a later version: until then the player
// asks for the file as it will, and then says that it cannot use it yet.
#include "player/MainWindow.h"
#include "player/Output.h"
#include "script/Game.h"

namespace tarve {

namespace {

void ChooseAndDecline(Game& game, bool save) {
  if (!game.host.ChooseSavedGameFile(save)) return;  // the player cancelled the dialog
  PrintText(game, "Saved games are not available in this version of Tarve yet.");
}

}  // namespace

void MenuSave(Game& game) { ChooseAndDecline(game, /*save=*/true); }
void MenuLoad(Game& game) { ChooseAndDecline(game, /*save=*/false); }

}  // namespace tarve
