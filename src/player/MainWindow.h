// The window-free logic of the game window: command entry, the key wait, the direction and
// action buttons, and the menus, shared by the desktop window, the terminal player and tests.
#pragma once

#include <string>
#include <string_view>

namespace tarve {

struct Game;

struct MainWindowState {
  std::string last_command;      // recalled by F12
  bool waiting_for_key = false;  // a key press ends the wait instead of running a command
  bool blank_line_after_turn = false;
};

// Enter in the command box (or the execute button) with `text` in it.
void SubmitCommand(Game& game, std::string_view text);
// Any key pressed while the window waits for one.
void KeyPressed(Game& game);
// The direction buttons 0-9 and the action buttons 0-3 with the chosen thing's name.
void PressDirectionButton(Game& game, int index);
void PressActionButton(Game& game, int index, std::string_view name);
// F12 in the command box: the text to put back into it.
const std::string& RecallLastCommand(const Game& game);

// The "save" and "load" commands: ask for a saved-game file and save to it or load it.
void MenuSave(Game& game);
void MenuLoad(Game& game);
// Save As: always asks for the file to write. Save asks only while the game has not yet been
// saved or loaded from a saved game.
void MenuSaveAs(Game& game);

// The input has ended (the terminal's standard input closed): every wait ends at once and no
// later wait blocks.
void EndAllWaits(Game& game);

}  // namespace tarve
