#include "script/Game.h"

namespace tarve {

void ResetGameTables(Game& game) {
  game.text = GameText();
  game.game_file.clear();
  game.game_path.clear();
  game.intproc_counter = 1;
  const bool from_command_line = game.run.opened_from_command_line;
  game.run = RunState();
  game.run.opened_from_command_line = from_command_line;
  game.variables = Variables();
  game.world = World();
  game.inventory = Inventory();
  game.messages = PlayerMessages();
  game.parser = ParserState();
  game.output.enabled = true;
  game.window.waiting_for_key = false;
}

}  // namespace tarve
