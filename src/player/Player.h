// The program around a game, whatever shows it: start-up, opening games and saved games, the
// menus of the game window, the command box with its keys and buttons, and what the log window
// and the variable viewers show. The desktop window, the terminal player and the tests all drive
// this one object; a front end only shows what it says and hands it what the player does.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "game/Game.h"
#include "player/Settings.h"
#include "player/SettingsStore.h"
#include "player/TurnHistory.h"

namespace tarve {

// The keys of the command box that the program answers itself.
enum class CommandBoxKey { kF11, kF12 };

// One row of a variables viewer: a name and its contents.
struct ViewerRow {
  std::string name;
  std::string value;
};

class Player : private ProgramCommands {
 public:
  // `store` keeps the settings between runs; without one they live in memory.
  explicit Player(Host host, std::unique_ptr<SettingsStore> store = nullptr);
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;
  ~Player() override;

  Game& game() { return game_; }
  const Game& game() const { return game_; }
  SettingsStore& settings_store() { return *store_; }

  // What start-up needs besides the command line.
  struct StartOptions {
    std::optional<std::uint32_t> seed;  // the random numbers' seed; the clock's when unset
    std::string program_folder;         // the data folder: tarve.dat, libraries
    FirstRunSetup first_run;            // the desktop program's first-run set-up
    // Where a game left unfinished is kept, to be offered again when it is opened; empty: no
    // game is kept or offered.
    std::string resume_folder;
  };
  enum class Started { kGame, kLauncher, kFailed };
  // Starts the program: the random numbers, the keyword table of compiled games, the settings,
  // then the command line (the program's arguments joined by blanks, taken whole): a name
  // ending in ".tsg" loads that saved game, any other opens that game, and an empty one shows
  // the splash and then the launcher.
  Started Start(const std::string& command_line, const StartOptions& options);
  // Start-up up to the command line: what a tool that reads a game without playing it needs.
  void Prepare(const StartOptions& options);

  // Opens a game chosen in the launcher (or named on the command line).
  bool OpenGame(const std::string& path);
  bool LoadSavedGame(const std::string& path);
  // A game is open and has not been left.
  bool game_open() const { return game_open_; }
  bool opened_from_command_line() const { return opened_from_command_line_; }

  // The command box: Enter (or the execute button) with `text` in it; any key while a key wait
  // is pending; the keys that change the box (what the box holds afterwards).
  void SubmitCommand(std::string_view text);
  void KeyPressed();
  std::string CommandBoxText(CommandBoxKey key) const;
  const std::string& last_command() const { return last_command_; }
  // While a script waits for a key or a typed line, or once the game is over, the buttons and
  // the command box take no command.
  bool waiting_for_key() const { return game_.output.waiting_for_key; }
  bool waiting_for_line() const { return game_.parser.waiting_for_input; }
  bool game_over() const { return game_.run.game_over; }
  // A turn ran out of memory: the game was stopped (game_over() holds) and the front end ends.
  bool out_of_memory() const { return out_of_memory_; }

  // The direction buttons 0-9 and the action buttons 0-3 ("go to", "look at", "speak to",
  // "take") with the chosen entry of the things-here list.
  void PressDirectionButton(int index);
  void PressActionButton(int index, std::string_view name);
  // Which action buttons an entry of the things-here list shows.
  static std::array<bool, 4> ActionButtonsFor(GameWindow::ThingType type);

  // No more input can come (a terminal's input ended): every wait ends at once, for good.
  void EndOfInput();

  // Takes back the last turn that changed the game (up to TurnHistory::kMaxTurns of them): says
  // which command it was and describes the room again. False, printing nothing, when there is
  // nothing to take back, a script waits, or the game is over.
  bool Undo();
  bool CanUndo() const;
  // The file in which the game at `game_file` is kept when it is left unfinished; empty when
  // no game is kept.
  std::string ResumeFile(const std::string& game_file) const;

  // The menus of the game window.
  void MenuLoad();
  void MenuSave();
  void MenuSaveAs();
  void MenuRestart();
  void MenuDifferentGame();
  void MenuGameInfo();
  // Closing the game's window: asks first; true when the player confirmed and the game is
  // closed, false when the window stays open.
  bool RequestClose();

  // The log window: its text, and whether it is shown (the menu's check mark).
  const std::string& log_text() const { return game_.log.text; }
  bool log_window_visible() const { return log_window_visible_; }
  void MenuViewLog();
  void LogWindowClosed() { log_window_visible_ = false; }

  // The variables viewers: the caption and the rows of one store, the heading row first.
  static std::string ViewerCaption(VariableStore store);
  std::vector<ViewerRow> ViewerRows(VariableStore store) const;

 private:
  // The player's "save", "load" and "quit" words.
  void Save() override { MenuSave(); }
  void Load() override { MenuLoad(); }
  bool Quit() override { return RequestClose(); }

  void SeedRandomNumbers(const StartOptions& options);
  void LoadProgramData(const StartOptions& options);
  bool OpenGameFile(const std::string& path, bool installed);
  // Saves the game to `path` and tells the window where it went; false when it could not.
  bool SaveTo(const std::string& path);
  // Asks whether to leave the game; on yes the game closes.
  bool ConfirmLeave();
  void CloseGame(bool end_program);
  bool TakesCommands() const;
  void RunTurn(std::string command);
  // A game was opened, restarted or loaded: nothing before it can be undone.
  void GameStarted(bool progress);
  // Asks whether to go on with the game at `path` where it was left; true when it was resumed.
  bool OfferResume(const std::string& path, bool installed);
  // The game is being left: keeps its state for the next time it is opened, or drops what was
  // kept when there is nothing worth going on with.
  void KeepResumeState();

  std::unique_ptr<SettingsStore> store_;
  Game game_;
  std::string last_command_;  // recalled by F12
  bool game_open_ = false;
  bool closed_ = false;  // left by the player: no command runs until a game opens again
  bool opened_from_command_line_ = false;
  bool log_window_visible_ = false;
  bool out_of_memory_ = false;
  TurnHistory history_;
  int turn_depth_ = 0;  // an `enter` answer is a turn run inside the turn that asked
  std::string resume_folder_;
  bool progress_ = false;  // a turn changed the game since it was opened or restarted
};

}  // namespace tarve
