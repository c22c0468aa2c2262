#include "FuzzTargets.h"

#include <stdlib.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "game/Game.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "player/OpenGame.h"
#include "player/Player.h"
#include "player/SavedGames.h"
#include "script/KeywordTable.h"

namespace tarve::fuzz {

namespace fs = std::filesystem;

namespace {

// Enough lines for long walks and nested questions, few enough that one input stays well under
// a second.
constexpr std::size_t kMaxTurnLines = 256;
constexpr std::size_t kMaxStatementLines = 128;
constexpr long kFuzzStatementLimit = 10000;
constexpr long kFuzzTotalStatementLimit = 15000;
// fuzz/run.sh numbers the turn target's games with the same rule (find -size).
constexpr std::uintmax_t kMaxTurnGameBytes = 65536;

// The fuzzer's bytes as text.
std::string_view AsText(const uint8_t* data, std::size_t size) {
  return std::string_view(reinterpret_cast<const char*>(data), size);
}

bool WriteFile(const fs::path& path, std::string_view bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(file);
}

// An empty folder for one run: what the previous input's game left there is gone.
fs::path FreshFolder(const std::string& workspace, const char* name) {
  const fs::path folder = fs::path(workspace) / name;
  std::error_code ec;
  fs::remove_all(folder, ec);
  fs::create_directories(folder, ec);
  return folder;
}

// A game with the workspace's data folder and keyword table, and random numbers that do not
// depend on the clock, so that every run of an input does the same.
void PrepareGame(Game& game, const Workspace& workspace) {
  game.program_folder = workspace.program_folder();
  LoadKeywordTable(game);
  game.random.seed(1);
  // Enough for every script of the project's games; small enough that loops inside loops, and
  // many loops one after the other, end within the fuzzer's second.
  game.statement_limit = kFuzzStatementLimit;
  game.total_statement_limit = kFuzzTotalStatementLimit;
}

int16_t ToInt16(std::string_view text) {
  long value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return static_cast<int16_t>(std::clamp(value, -32768L, 32767L));
}

}  // namespace

Workspace::Workspace(const std::string& source_dir) {
  const fs::path temp = fs::temp_directory_path();
  std::string pattern = (temp / "tarve-fuzz-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) return;
  folder_ = pattern;
  program_folder_ = folder_ + "/program";
  std::error_code ec;
  const fs::path source(source_dir);
  fs::create_directories(program_folder_, ec);
  fs::copy_file(source / "data/tarve.dat", fs::path(program_folder_) / "tarve.dat", ec);
  if (ec) return;

  // Every game folder keeps its own files (libraries beside their games).
  const fs::path games = fs::path(folder_) / "games";
  const std::pair<fs::path, std::string> sources[] = {
      {source / "examples", "examples"},
      {source / "fuzz/games", "fuzz"},
      {source / "tests/games", "tests"},
  };
  for (const auto& [from, name] : sources) {
    fs::create_directories(games / name, ec);
    fs::copy(from, games / name, fs::copy_options::recursive, ec);
    if (ec) return;
  }
  // The turn target plays the games of at most kMaxTurnGameBytes: a look in the stress test's
  // room of 2,000 things costs about a millisecond, forty times that under the fuzzer's
  // instrumentation, and a few dozen of them would pass the second an input may take.
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(games, ec)) {
    if (entry.path().extension() == ".gwl" && entry.file_size(ec) <= kMaxTurnGameBytes) {
      games_.push_back(entry.path().string());
    }
  }
  std::sort(games_.begin(), games_.end());
  statement_game_ = (games / "fuzz/statements.gwl").string();
  ok_ = !games_.empty();
}

Workspace::~Workspace() {
  if (folder_.empty()) return;
  std::error_code ec;
  fs::remove_all(folder_, ec);
}

std::optional<std::string> FuzzHost::Next() {
  if (lines.empty()) return std::nullopt;
  std::string line = std::move(lines.front());
  lines.pop_front();
  return line;
}

int FuzzHost::ShowMessage(const std::string& text, const std::string& title, int style) {
  (void)text;
  (void)title;
  const int buttons = style & 0x0F;
  if (buttons != kOkCancel && buttons != kYesNo) return kAnswerOk;
  const std::optional<std::string> answer = Next();
  const bool yes = answer && !answer->empty() &&
                   std::string_view("yYoO").find((*answer)[0]) != std::string_view::npos;
  if (buttons == kYesNo) return yes ? kAnswerYes : kAnswerNo;
  return yes ? kAnswerOk : kAnswerCancel;
}

std::optional<std::string> FuzzHost::InputBox(const std::string& title, const std::string& prompt) {
  (void)title;
  (void)prompt;
  return Next();
}

void FuzzHost::ProcessEventsUntil(const std::function<bool()>& done) {
  while (!done() && !closed && player != nullptr) {
    std::optional<std::string> line = Next();
    if (!line) {
      player->EndOfInput();
      return;
    }
    // Enter ends a pending key wait; otherwise the line goes to the command box.
    player->SubmitCommand(*line);
  }
}

int FuzzHost::ShowSelection(const std::string& prompt, const std::vector<std::string>& answers) {
  (void)prompt;
  const std::optional<std::string> answer = Next();
  if (!answer || answers.empty()) return -1;
  const int16_t number = ToInt16(*answer);
  if (number < 1 || static_cast<std::size_t>(number) > answers.size()) return 0;
  return number - 1;
}

std::deque<std::string> SplitLines(std::string_view input, std::size_t max_lines) {
  std::deque<std::string> lines;
  while (!input.empty() && lines.size() < max_lines) {
    const std::size_t end = input.find('\n');
    lines.emplace_back(input.substr(0, end));
    if (end == std::string_view::npos) break;
    input.remove_prefix(end + 1);
  }
  return lines;
}

void RunGameReader(const Workspace& workspace, const uint8_t* data, std::size_t size) {
  const std::string_view input = AsText(data, size);
  const fs::path folder = FreshFolder(workspace.folder(), "reader");
  const std::size_t split = input.find(kLibrarySeparator);
  if (!WriteFile(folder / "game.gwl", input.substr(0, split))) return;
  if (split != std::string_view::npos &&
      !WriteFile(folder / "lib.gwl", input.substr(split + kLibrarySeparator.size()))) {
    return;
  }
  FuzzHost host;
  Player player(host);
  host.player = &player;
  Game& game = player.game();
  PrepareGame(game, workspace);
  OpenGame(game, (folder / "game.gwl").string());
}

void RunCompiledReader(const Workspace& workspace, const uint8_t* data, std::size_t size) {
  const fs::path folder = FreshFolder(workspace.folder(), "compiled");
  if (!WriteFile(folder / "game.cgw", AsText(data, size))) {
    return;
  }
  FuzzHost host;
  Player player(host);
  host.player = &player;
  Game& game = player.game();
  PrepareGame(game, workspace);
  OpenGame(game, (folder / "game.cgw").string());
}

namespace {

// Copies the folder of `game_file` into a fresh run folder (whatever the game does to its
// files stays there) and returns the copy's path.
std::string CopyGameFolder(const Workspace& workspace, const std::string& game_file) {
  const fs::path folder = FreshFolder(workspace.folder(), "run");
  const fs::path original(game_file);
  std::error_code ec;
  fs::copy(original.parent_path(), folder, fs::copy_options::recursive, ec);
  return (folder / original.filename()).string();
}

}  // namespace

void RunTurns(const Workspace& workspace, const uint8_t* data, std::size_t size) {
  if (size == 0 || workspace.games().empty()) return;
  const std::string& chosen = workspace.games()[data[0] % workspace.games().size()];
  FuzzHost host;
  host.lines = SplitLines(AsText(data + 1, size - 1), kMaxTurnLines);
  Player player(host);
  host.player = &player;
  Game& game = player.game();
  PrepareGame(game, workspace);
  if (!OpenGame(game, CopyGameFolder(workspace, chosen))) return;
  while (!host.closed && !game.run.game_over && !host.lines.empty()) {
    std::string line = std::move(host.lines.front());
    host.lines.pop_front();
    player.SubmitCommand(line);
  }
}

void RunStatements(const Workspace& workspace, const uint8_t* data, std::size_t size) {
  FuzzHost host;
  host.lines = SplitLines(AsText(data, size), kMaxStatementLines);
  Player player(host);
  host.player = &player;
  Game& game = player.game();
  PrepareGame(game, workspace);
  if (!OpenGame(game, CopyGameFolder(workspace, workspace.statement_game()))) return;
  const char* const variables[] = {"fuzz1", "fuzz2", "fuzzn"};
  for (const char* name : variables) {
    if (host.lines.empty()) return;
    const std::string value = std::move(host.lines.front());
    host.lines.pop_front();
    if (name[4] == 'n') {
      SetNumericVariable(game, name, ToInt16(value));
    } else {
      SetStringVariable(game, name, value);
    }
  }
  while (!host.closed && !host.lines.empty()) {
    std::string line = std::move(host.lines.front());
    host.lines.pop_front();
    ExecuteScript(game, line);
  }
}

namespace {

// The folder the saved-game target loads from, with the two games a saved game may name.
fs::path SavedGameFolder(const Workspace& workspace) {
  const fs::path folder = FreshFolder(workspace.folder(), "saved");
  const fs::path games = fs::path(workspace.folder()) / "games";
  std::error_code ec;
  fs::copy_file(games / "examples/demo.gwl", folder / "demo.gwl", ec);
  fs::copy_file(games / "fuzz/statements.gwl", folder / "statements.gwl", ec);
  return folder;
}

}  // namespace

void RunSavedGame(const Workspace& workspace, const uint8_t* data, std::size_t size) {
  const fs::path folder = SavedGameFolder(workspace);
  if (!WriteFile(folder / "game.tsg", AsText(data, size))) {
    return;
  }
  FuzzHost host;
  Player player(host);
  host.player = &player;
  Game& game = player.game();
  PrepareGame(game, workspace);
  if (!OpenGame(game, (folder / "demo.gwl").string())) return;
  player.SubmitCommand("north");
  LoadSavedGame(game, (folder / "game.tsg").string());
  if (!host.closed && !game.run.game_over) player.SubmitCommand("look");
}

std::string MakeSavedGameSeed(const Workspace& workspace, const std::string& game_file,
                              const std::vector<std::string>& commands) {
  const fs::path folder = SavedGameFolder(workspace);
  const std::string path = (folder / game_file).string();
  FuzzHost host;
  Player player(host);
  host.player = &player;
  Game& game = player.game();
  PrepareGame(game, workspace);
  if (!OpenGame(game, path)) return {};
  for (const std::string& command : commands) player.SubmitCommand(command);
  std::string text = SavedGameText(game);
  const std::size_t at = text.find(path);
  if (at != std::string::npos) text.replace(at, path.size(), game_file);
  return text;
}

}  // namespace tarve::fuzz
