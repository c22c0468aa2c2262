#include "player/MainWindow.h"

#include <array>

#include "script/Game.h"
#include "world/CommandParser.h"

namespace tarve {

namespace {

// The commands of the direction buttons, by button index, and the verbs of the action buttons
// that go before the chosen thing's name.
constexpr std::array<std::string_view, 10> kDirectionCommands = {
    "north", "south",     "west",      "east",      "out",
    "help",  "northeast", "northwest", "southeast", "southwest"};
constexpr std::array<std::string_view, 4> kActionVerbs = {"go to ", "look at ", "speak to ",
                                                          "take "};

// While a key wait is pending or the game is over, the buttons and the command box are
// disabled: nothing they would send may start a turn.
bool CommandsDisabled(const Game& game) {
  return game.window.waiting_for_key || game.run.game_over;
}

void RunTurn(Game& game, std::string command) {
  ExecuteCommand(game, command, /*echo=*/true, /*try_game_commands=*/true);
}

}  // namespace

void SubmitCommand(Game& game, std::string_view text) {
  if (game.window.waiting_for_key) {
    // The execute button ends a key wait; the text in the box is not run.
    game.window.waiting_for_key = false;
    return;
  }
  if (text.empty() || game.run.game_over) return;
  game.window.last_command = std::string(text);
  RunTurn(game, std::string(text));
  game.host.FocusCommandBox();
}

void KeyPressed(Game& game) { game.window.waiting_for_key = false; }

void PressDirectionButton(Game& game, int index) {
  if (index < 0 || index >= static_cast<int>(kDirectionCommands.size())) return;
  if (CommandsDisabled(game)) return;
  RunTurn(game, std::string(kDirectionCommands[static_cast<std::size_t>(index)]));
}

void PressActionButton(Game& game, int index, std::string_view name) {
  if (index < 0 || index >= static_cast<int>(kActionVerbs.size()) || name.empty()) return;
  if (CommandsDisabled(game)) return;
  std::string command(kActionVerbs[static_cast<std::size_t>(index)]);
  command += name;
  RunTurn(game, std::move(command));
}

const std::string& RecallLastCommand(const Game& game) { return game.window.last_command; }

void EndAllWaits(Game& game) {
  game.run.input_ended = true;
  game.window.waiting_for_key = false;
  game.parser.waiting_for_input = false;
}

}  // namespace tarve
