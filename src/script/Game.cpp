#include "script/Game.h"

namespace tarve {

void ResetGameTables(Game& game) {
  game.text = GameText();
  game.game_file.clear();
  game.game_path.clear();
  game.intproc_counter = 1;
}

}  // namespace tarve
