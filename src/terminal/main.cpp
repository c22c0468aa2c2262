// tarve-cli: the player in a terminal, for players who prefer one, for authors who script their
// games, and for the transcript tests.
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Files.h"
#include "base/Text.h"
#include "platform/QtSettingsStore.h"
#include "player/MainWindow.h"
#include "player/Output.h"
#include "player/SavedGames.h"
#include "player/Settings.h"
#include "script/CommonCode.h"
#include "script/Game.h"
#include "script/KeywordTable.h"
#include "script/OpenGame.h"
#include "terminal/CommandLine.h"
#include "terminal/TerminalHost.h"

#ifndef TARVE_INSTALLED_DATA_DIR
#define TARVE_INSTALLED_DATA_DIR "/usr/local/share/tarve"
#endif

namespace tarve {
namespace {

// Without --seed the random numbers start from the clock, as every run of a game should differ.
std::uint32_t ClockSeed() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

void Dump(TerminalHost& host, const GameText& text) {
  char number[16];
  for (int i = 1; i <= text.LineCount(); ++i) {
    std::snprintf(number, sizeof number, "%5d: ", i);
    host.WriteLine(number + text.Line(i));
  }
  for (int b = 1; b <= text.BlockCount(); ++b) {
    const BlockRecord& block = text.blocks[static_cast<std::size_t>(b)];
    std::string line = "block " + std::to_string(b) + ": " + std::to_string(block.start) + "-" +
                       std::to_string(block.end) + " " + block.type;
    if (block.has_parameter) line += " <" + block.parameter + ">";
    host.WriteLine(line);
  }
}

// Without a file the player lists the installed games and the player picks one by its number.
// Returns the chosen game's file, or nothing when the input ends first.
std::optional<std::string> PickInstalledGame(TerminalHost& host,
                                             const std::vector<InstalledGame>& games) {
  host.WriteLine("Installed games:");
  for (std::size_t i = 0; i < games.size(); ++i) {
    host.WriteLine("  " + std::to_string(i + 1) + ". " + games[i].name);
  }
  const std::string range = "1 to " + std::to_string(games.size());
  for (;;) {
    host.WriteLine("Type the number of the game to play (" + range + "):");
    std::optional<std::string> line = host.ReadLine();
    if (!line) return std::nullopt;
    const std::string answer = Trim(*line);
    std::size_t number = 0;
    auto [end, ec] = std::from_chars(answer.data(), answer.data() + answer.size(), number);
    if (ec == std::errc() && end == answer.data() + answer.size() && number >= 1 &&
        number <= games.size()) {
      return games[number - 1].file;
    }
    host.WriteLine("There is no game " + answer + " in the list.");
  }
}

// Opens what the command line names: a saved game when it ends in ".tsg" in any case, any
// other file as a game. Without a file, one of the installed games.
bool OpenFromCommandLine(Game& game, TerminalHost& host, const SettingsStore& store,
                         const std::string& command_line, bool& nothing_chosen) {
  nothing_chosen = false;
  if (!command_line.empty()) {
    if (LCase(CharRight(command_line, 4)) == ".tsg") return LoadSavedGame(game, command_line);
    game.run.opened_from_command_line = true;
    return OpenGame(game, command_line, IsInstalledGame(store, command_line));
  }
  const std::vector<InstalledGame> games = ReadInstalledGames(store);
  if (games.empty()) {
    host.WriteLine("No games are installed. Name a game file to play it: tarve-cli GAME.gwl");
    return false;
  }
  std::optional<std::string> file = PickInstalledGame(host, games);
  if (!file) {
    nothing_chosen = true;
    return false;
  }
  return OpenGame(game, *file, /*installed=*/true);
}

int Run(const std::vector<std::string>& args) {
  std::string error;
  std::optional<CommandLine> options = ParseCommandLine(args, error);
  if (!options) {
    std::cerr << error << "\n" << kUsage;
    return 2;
  }
  if (options->help) {
    std::cout << kUsage;
    return 0;
  }
  const bool terminal = isatty(STDOUT_FILENO) != 0;
  const bool styled = !options->plain && terminal && std::getenv("NO_COLOR") == nullptr;
  TerminalHost host(std::cin, std::cout, terminal, styled);
  if (!options->log_file.empty() && !host.OpenLogFile(options->log_file)) {
    std::cerr << "tarve-cli: cannot write the log file " << options->log_file << "\n";
    return 2;
  }
  if (!options->transcript_file.empty() && !host.OpenTranscript(options->transcript_file)) {
    std::cerr << "tarve-cli: cannot write the transcript file " << options->transcript_file << "\n";
    return 2;
  }
  if (options->dump && options->file.empty()) {
    std::cerr << "tarve-cli: --dump needs a game file\n" << kUsage;
    return 2;
  }

  // Start-up: a fresh game (no game open, not opened from the command line), the random
  // numbers, the keyword table of compiled games, the settings, and then the command line.
  Game game(host);
  game.random.seed(options->seed ? static_cast<std::uint32_t>(*options->seed) : ClockSeed());
  game.program_folder = FindDataFolder(TARVE_INSTALLED_DATA_DIR);
  LoadKeywordTable(game);
  // The first-run set-up (document types, "Setup Complete") belongs to the desktop program.
  std::unique_ptr<QtSettingsStore> store =
      options->settings_dir.empty() ? std::make_unique<QtSettingsStore>()
                                    : std::make_unique<QtSettingsStore>(options->settings_dir);
  LoadSettings(game, *store);

  if (options->dump) {
    if (!LoadGameText(game, options->file)) return 1;
    Dump(host, game.text);
    return 0;
  }

  game.window.blank_line_after_turn = options->blank_line;
  bool nothing_chosen = false;
  if (!OpenFromCommandLine(game, host, *store, options->file, nothing_chosen)) {
    return nothing_chosen ? 0 : 1;
  }

  // Each input line is what the command box receives on Enter. The game ends with the input,
  // when the player quits, or when the game itself is over (won or lost), since its command box
  // takes nothing more.
  while (!host.Closed() && !game.run.game_over) {
    std::optional<std::string> line = host.ReadLine();
    if (!line) break;
    SubmitCommand(game, *line);
  }
  CloseOutputFile(game);
  return 0;
}

}  // namespace
}  // namespace tarve

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  return tarve::Run(args);
}
