#include "player/Player.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <new>

#include "base/Files.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "game/ScriptLog.h"
#include "player/OpenGame.h"
#include "player/SavedGames.h"
#include "world/CommandParser.h"
#include "world/Items.h"
#include "world/RoomDescription.h"

namespace tarve {

namespace {

// The commands of the direction buttons, by button index, and the verbs of the action buttons
// that go before the chosen thing's name.
constexpr std::array<std::string_view, 10> kDirectionCommands = {
    "north", "south",     "west",      "east",      "out",
    "help",  "northeast", "northwest", "southeast", "southwest"};
constexpr std::array<std::string_view, 4> kActionVerbs = {"go to ", "look at ", "speak to ",
                                                          "take "};

constexpr const char* kLeaveQuestion = "Do you really want to exit this game?";
constexpr const char* kRestartQuestion =
    "Do you really want to restart this game from the beginning?";
constexpr const char* kResumeQuestion =
    "You left this game before it was finished. Do you want to go on where you left off? "
    "(No starts it from the beginning.)";
constexpr const char* kUndoneText = "Undone: ";

// The game file as one spelling, whichever way it was named, for the key of its kept state.
std::string NormalGamePath(const std::string& path) {
  std::error_code ec;
  std::filesystem::path full = std::filesystem::weakly_canonical(path, ec);
  if (ec) full = std::filesystem::absolute(path, ec).lexically_normal();
  return ec ? path : full.string();
}

// FNV-1a: a short, stable name for a path of any length and any characters.
std::uint64_t PathHash(const std::string& path) {
  std::uint64_t hash = 14695981039346656037ull;
  for (const char c : path) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 1099511628211ull;
  }
  return hash;
}

}  // namespace

Player::Player(Host host, std::unique_ptr<SettingsStore> store)
    : store_(store ? std::move(store) : std::make_unique<MemorySettingsStore>()), game_(host) {
  game_.program = this;
}

Player::~Player() {
  // The end of a terminal's input, or a program ended without closing its game first.
  if (game_open_) KeepResumeState();
  CloseOutputFile(game_);
}

void Player::Prepare(const StartOptions& options) {
  SeedRandomNumbers(options);
  LoadProgramData(options);
}

void Player::SeedRandomNumbers(const StartOptions& options) {
  opened_from_command_line_ = false;
  game_.random.seed(options.seed ? *options.seed : game_.host.platform.ClockSeed());
}

void Player::LoadProgramData(const StartOptions& options) {
  game_.program_folder = options.program_folder;
  resume_folder_ = options.resume_folder;
  LoadKeywordTable(game_);
  LoadSettings(game_, *store_, options.first_run);
}

Player::Started Player::Start(const std::string& command_line, const StartOptions& options) {
  Host& host = game_.host;
  SeedRandomNumbers(options);
  // The splash shows while a start without a file prepares the launcher.
  const bool launcher = command_line.empty();
  if (launcher) host.dialogs.ShowSplash();
  LoadProgramData(options);

  Started started = Started::kLauncher;
  if (!launcher) {
    bool opened = false;
    if (LCase(CharRight(command_line, 4)) == ".tsg") {
      opened = LoadSavedGame(command_line);
    } else {
      opened_from_command_line_ = true;
      opened = OpenGame(command_line);
    }
    started = opened ? Started::kGame : Started::kFailed;
  } else {
    host.dialogs.ShowLauncher();
  }
  host.dialogs.CloseSplash();
  return started;
}

bool Player::OpenGame(const std::string& path) {
  const bool installed = IsInstalledGame(*store_, path);
  return OfferResume(path, installed) || OpenGameFile(path, installed);
}

bool Player::OpenGameFile(const std::string& path, bool installed) {
  game_open_ = tarve::OpenGame(game_, path, installed);
  if (game_open_) {
    closed_ = false;
    GameStarted(/*progress=*/false);
  }
  return game_open_;
}

bool Player::LoadSavedGame(const std::string& path) {
  if (!tarve::LoadSavedGame(game_, path)) return false;
  game_open_ = true;
  closed_ = false;
  // A loaded game is worth going on with even before its first turn.
  GameStarted(/*progress=*/true);
  return true;
}

void Player::GameStarted(bool progress) {
  history_.Reset(game_);
  progress_ = progress;
}

std::string Player::ResumeFile(const std::string& game_file) const {
  if (resume_folder_.empty() || game_file.empty()) return {};
  const std::string full = NormalGamePath(game_file);
  char key[17];
  std::snprintf(key, sizeof key, "%016llx", static_cast<unsigned long long>(PathHash(full)));
  // The game file's own name leads, so that the folder can be read by a person.
  return resume_folder_ + "/" + std::filesystem::path(full).stem().string() + "-" + key + ".tsg";
}

bool Player::OfferResume(const std::string& path, bool installed) {
  const std::string kept = ResumeFile(path);
  std::error_code ec;
  if (kept.empty() || !std::filesystem::exists(kept, ec)) return false;
  const bool resume =
      game_.host.dialogs.ShowMessage(kResumeQuestion, "Tarve", kYesNo) == kAnswerYes;
  // Asked once: a game started afresh, or kept state that cannot be loaded, is not offered again.
  if (!resume || !LoadSavedGame(kept)) {
    std::filesystem::remove(kept, ec);
    return false;
  }
  // Saving must ask for a file of the player's own, not write over the kept state.
  game_.run.current_saved_game_path.clear();
  game_.run.installed_game = installed;
  return true;
}

void Player::KeepResumeState() {
  const std::string kept = ResumeFile(game_.game_file);
  if (kept.empty()) return;
  std::error_code ec;
  if (!progress_ || game_over()) {
    std::filesystem::remove(kept, ec);
    return;
  }
  std::filesystem::create_directories(resume_folder_, ec);
  if (!WriteFileAtomically(kept, SavedGameText(game_))) {
    LogScriptError(game_, "Error: The game could not be kept in " + kept + " for next time.");
  }
}

bool Player::TakesCommands() const { return !closed_ && !waiting_for_key() && !game_over(); }

void Player::RunTurn(std::string command) {
  const std::string typed = command;
  const int games_opened = game_.games_opened;
  ++turn_depth_;
  // A game that builds values until the memory runs out stops cleanly at the end of its turn
  // instead of ending the program: what the turn left half-done is not played on.
  try {
    ExecuteCommand(game_, command, /*echo=*/true, /*try_game_commands=*/true);
  } catch (const std::bad_alloc&) {
    --turn_depth_;
    out_of_memory_ = true;
    game_.run.game_over = true;
    try {
      LogScriptError(game_, "Error: Out of memory - the game was stopped.");
      game_.host.dialogs.ShowMessage("Tarve ran out of memory, so the game was stopped.", "Error",
                                     kOkOnly);
    } catch (const std::bad_alloc&) {
      // Not even the message fits; the front end still ends the game.
    }
    return;
  }
  --turn_depth_;
  if (turn_depth_ > 0) return;
  if (game_.games_opened != games_opened) {
    // The turn loaded a saved game or its script opened another game: a new start.
    history_.Reset(game_);
  } else if (history_.Record(game_, typed)) {
    progress_ = true;
  }
}

bool Player::CanUndo() const {
  return history_.CanUndo() && turn_depth_ == 0 && TakesCommands() && !waiting_for_line();
}

bool Player::Undo() {
  if (!CanUndo()) return false;
  std::string command;
  history_.Undo(game_, command);
  // Open variables viewers show the tables as they are again.
  for (const VariableStore store : {VariableStore::kString, VariableStore::kNumeric}) {
    const std::vector<ViewerRow> rows = ViewerRows(store);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      game_.host.window.VariableViewerRow(static_cast<int>(store), static_cast<int>(rows.size()),
                                          static_cast<int>(i), rows[i].name, rows[i].value);
    }
  }
  RefreshInventory(game_);
  PrintText(game_, "");  // apart from the turn taken back, as a command's echo is
  PrintText(game_, kUndoneText + command);
  PrintText(game_, "");
  DescribeRoom(game_, game_.world.current_room);
  RefreshThingsHere(game_);
  PrintText(game_, "");
  // Describing the room sets the variables it publishes; that is no turn of its own.
  history_.Absorb(game_);
  return true;
}

void Player::SubmitCommand(std::string_view text) {
  if (game_.output.waiting_for_key) {
    // The execute button ends a key wait; the text in the box is not run.
    game_.output.waiting_for_key = false;
    return;
  }
  if (text.empty() || !TakesCommands()) return;
  last_command_ = std::string(text);
  RunTurn(std::string(text));
  game_.host.window.FocusCommandBox();
}

void Player::KeyPressed() { game_.output.waiting_for_key = false; }

std::string Player::CommandBoxText(CommandBoxKey key) const {
  return key == CommandBoxKey::kF12 ? last_command_ : std::string();
}

void Player::PressDirectionButton(int index) {
  if (index < 0 || index >= static_cast<int>(kDirectionCommands.size())) return;
  if (!TakesCommands()) return;
  RunTurn(std::string(kDirectionCommands[static_cast<std::size_t>(index)]));
}

void Player::PressActionButton(int index, std::string_view name) {
  if (index < 0 || index >= static_cast<int>(kActionVerbs.size()) || name.empty()) return;
  if (!TakesCommands()) return;
  std::string command(kActionVerbs[static_cast<std::size_t>(index)]);
  command += name;
  RunTurn(std::move(command));
}

std::array<bool, 4> Player::ActionButtonsFor(GameWindow::ThingType type) {
  // Places are gone to and looked at; characters are spoken to and looked at, never taken;
  // objects are looked at and taken. Going to a thing is no verb of the game language.
  switch (type) {
    case GameWindow::ThingType::kPlace:
      return {true, true, false, false};
    case GameWindow::ThingType::kCharacter:
      return {false, true, true, false};
    case GameWindow::ThingType::kObject:
      break;
  }
  return {false, true, false, true};
}

void Player::EndOfInput() {
  game_.run.input_ended = true;
  game_.output.waiting_for_key = false;
  game_.parser.waiting_for_input = false;
}

void Player::MenuSaveAs() {
  // A file that cannot be written (a read-only folder, a full disk) asks for another name, until
  // the game is saved or the player cancels.
  for (;;) {
    std::optional<std::string> path = game_.host.dialogs.ChooseSavedGameFile(/*save=*/true);
    if (!path) return;  // the player cancelled the dialog
    // A name typed without an extension gets the saved-game one, so that the file is known for
    // a saved game when it is opened again.
    if (!std::filesystem::path(*path).has_extension()) *path += ".tsg";
    if (SaveTo(*path) || game_.game_file.empty()) return;
  }
}

void Player::MenuSave() {
  // Once the game has been saved or loaded, Save writes to that file again without asking;
  // when that file can no longer be written, the player is asked for another.
  const std::string path = game_.run.current_saved_game_path;
  if (path.empty() || (!SaveTo(path) && !game_.game_file.empty())) MenuSaveAs();
}

bool Player::SaveTo(const std::string& path) {
  if (!SaveGame(game_, path)) return false;
  game_.host.window.GameSaved(path);
  return true;
}

void Player::MenuLoad() {
  const std::optional<std::string> path = game_.host.dialogs.ChooseSavedGameFile(/*save=*/false);
  if (path) LoadSavedGame(*path);
}

void Player::MenuRestart() {
  if (game_.host.dialogs.ShowMessage(kRestartQuestion, "Tarve", kYesNo) != kAnswerYes) return;
  // The file is opened afresh, as if the game had been chosen again.
  const std::string path = game_.game_file;
  OpenGameFile(path, game_.run.installed_game);
}

bool Player::ConfirmLeave() {
  return game_.host.dialogs.ShowMessage(kLeaveQuestion, "Tarve", kYesNo) == kAnswerYes;
}

void Player::MenuDifferentGame() {
  if (ConfirmLeave()) CloseGame(/*end_program=*/false);
}

void Player::MenuGameInfo() {
  if (TakesCommands()) RunTurn("about");
}

bool Player::RequestClose() {
  if (!ConfirmLeave()) return false;
  // A game named on the command line is the program's only purpose: leaving it ends the
  // program. A game started from the launcher goes back to the launcher.
  CloseGame(opened_from_command_line_);
  return true;
}

void Player::CloseGame(bool end_program) {
  KeepResumeState();
  history_.Clear();
  game_.host.platform.StopSounds();
  game_open_ = false;
  closed_ = true;
  game_.host.window.CloseGame(end_program);
}

void Player::MenuViewLog() { log_window_visible_ = !log_window_visible_; }

std::string Player::ViewerCaption(VariableStore store) {
  switch (store) {
    case VariableStore::kNumeric:
      return "Numeric variables";
    case VariableStore::kCollectable:
      return "Collectables";
    case VariableStore::kString:
      break;
  }
  return "String variables";
}

std::vector<ViewerRow> Player::ViewerRows(VariableStore store) const {
  std::vector<ViewerRow> rows;
  if (store == VariableStore::kCollectable) {
    rows.push_back({"Collectable", "Amount"});
    for (const Collectable& collectable : game_.inventory.collectables) {
      rows.push_back({collectable.name, FormatSingle(collectable.amount)});
    }
    return rows;
  }
  rows.push_back({"Name", "Contents"});
  const VariableTable& table =
      store == VariableStore::kNumeric ? game_.variables.numerics : game_.variables.strings;
  for (const VariableEntry& entry : table.entries) rows.push_back({entry.name, entry.value});
  return rows;
}

}  // namespace tarve
