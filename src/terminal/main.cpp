// tarve-cli: the player in a terminal, for players who prefer one, for authors who script their
// games, and for the transcript tests.
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "base/Files.h"
#include "player/MainWindow.h"
#include "player/Output.h"
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
  if (options->file.empty()) {
    std::cerr << "tarve-cli: name a game file to open\n" << kUsage;
    return 2;
  }

  Game game(host);
  game.program_folder = FindDataFolder(TARVE_INSTALLED_DATA_DIR);
  LoadKeywordTable(game);

  if (options->dump) {
    if (!LoadGameText(game, options->file)) return 1;
    Dump(host, game.text);
    return 0;
  }

  game.random.seed(options->seed ? static_cast<std::uint32_t>(*options->seed) : ClockSeed());
  game.window.blank_line_after_turn = options->blank_line;
  game.run.opened_from_command_line = true;
  if (!OpenGame(game, options->file)) return 1;

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
