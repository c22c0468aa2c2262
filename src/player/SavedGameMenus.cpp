// The Save, Save As and Load menus (and the "save" and "load" commands that stand for them):
// each asks for a file where it must and hands it to the saved-game routines.
#include <filesystem>

#include "player/MainWindow.h"
#include "player/SavedGames.h"
#include "script/Game.h"

namespace tarve {

void MenuSaveAs(Game& game) {
  std::optional<std::string> path = game.host.ChooseSavedGameFile(/*save=*/true);
  if (!path) return;  // the player cancelled the dialog
  // A name typed without an extension gets the saved-game one, so that the file is known for
  // a saved game when it is opened again.
  if (!std::filesystem::path(*path).has_extension()) *path += ".tsg";
  SaveGame(game, *path);
}

void MenuSave(Game& game) {
  // Once the game has been saved or loaded, Save writes to that file again without asking.
  if (game.run.current_saved_game_path.empty()) {
    MenuSaveAs(game);
  } else {
    SaveGame(game, game.run.current_saved_game_path);
  }
}

void MenuLoad(Game& game) {
  const std::optional<std::string> path = game.host.ChooseSavedGameFile(/*save=*/false);
  if (!path) return;
  LoadSavedGame(game, *path);
}

}  // namespace tarve
