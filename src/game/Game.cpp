#include "game/Game.h"

#include "interpreter/Substitution.h"

namespace tarve {

Game::Game(Host host_in) : host(host_in), substitute_all(&SubstituteAll) {}

void ResetGameTables(Game& game) {
  game.text = GameText();
  game.game_file.clear();
  game.game_path.clear();
  game.intproc_counter = 1;
  game.run = RunState();
  game.variables = Variables();
  game.world = World();
  game.inventory = Inventory();
  game.messages = PlayerMessages();
  game.parser = ParserState();
  game.output.enabled = true;
  game.output.waiting_for_key = false;
}

bool ChargeStatements(Game& game, long count) {
  RunState& run = game.run;
  if (run.script_depth == 0) return true;
  if (run.unwinding) return false;
  const long lines = game.text.lines_read - run.lines_charged;
  if (lines < 0) {
    run.lines_charged = game.text.lines_read;  // another game's lines since the last charge
  } else if (lines >= kScannedPerStatement) {
    count += lines / kScannedPerStatement;
    run.lines_charged += lines / kScannedPerStatement * kScannedPerStatement;
  }
  run.statements_run += count;
  game.statements_total += count;
  // Nearly every charge stays within both limits; only a cut builds its message.
  if (run.statements_run <= game.statement_limit &&
      game.statements_total <= game.total_statement_limit) {
    return true;
  }
  std::string cut;
  if (run.statements_run > game.statement_limit) {
    cut = "Error: The statement ran more than " + std::to_string(game.statement_limit) +
          " statements and calls (loops inside loops?) - the rest of it was skipped.";
  } else if (game.statements_total > game.total_statement_limit) {
    cut = "Error: The game ran more than " + std::to_string(game.total_statement_limit) +
          " statements and calls in all - the rest of the statement was skipped.";
  } else {
    return true;
  }
  run.unwinding = true;
  LogScriptError(game, cut);
  return false;
}

}  // namespace tarve
