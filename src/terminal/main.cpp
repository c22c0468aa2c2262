// tarve-cli: the player in a terminal, for players who prefer one, for authors who script their
// games, and for the transcript tests.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "script/CommonCode.h"
#include "script/Game.h"
#include "script/OpenGame.h"
#include "terminal/CommandLine.h"
#include "terminal/TerminalHost.h"

#ifndef TARVE_INSTALLED_DATA_DIR
#define TARVE_INSTALLED_DATA_DIR "/usr/local/share/tarve"
#endif

namespace tarve {
namespace {

// The data folder: the executable's own folder when it holds tarve.dat (a build tree), else the
// installed data folder.
std::string ProgramFolder() {
  std::error_code ec;
  std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    std::filesystem::path folder = exe.parent_path();
    if (std::filesystem::exists(folder / "tarve.dat", ec)) return folder.string();
  }
  return TARVE_INSTALLED_DATA_DIR;
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
  const bool styled =
      !options->plain && isatty(STDOUT_FILENO) && std::getenv("NO_COLOR") == nullptr;
  TerminalHost host(std::cin, std::cout, styled);
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
  game.program_folder = ProgramFolder();

  if (options->dump) {
    if (!LoadGameText(game, options->file)) return 1;
    Dump(host, game.text);
    return 0;
  }
  if (!OpenGame(game, options->file)) return 1;
  host.WriteLine("Read " + options->file + ": " + std::to_string(game.text.LineCount()) +
                 " lines in " + std::to_string(game.text.BlockCount()) + " blocks.");
  return 0;
}

}  // namespace
}  // namespace tarve

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  return tarve::Run(args);
}
