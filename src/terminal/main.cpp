// tarve-cli: the player in a terminal, for players who prefer one, for authors who script their
// games, and for the transcript tests.
#include <unistd.h>

#include <QCoreApplication>
#include <QtGlobal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Files.h"
#include "platform/QtSettingsStore.h"
#include "platform/SystemServices.h"
#include "player/OpenGame.h"
#include "player/OptionsForm.h"
#include "player/Player.h"
#include "terminal/CommandLine.h"
#include "terminal/TerminalHost.h"

#ifndef TARVE_INSTALLED_DATA_DIR
#define TARVE_INSTALLED_DATA_DIR "/usr/local/share/tarve"
#endif

namespace tarve {
namespace {

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
  if (options->dump && options->file.empty()) {
    std::cerr << "tarve-cli: --dump needs a game file\n" << kUsage;
    return 2;
  }

  // The first-run set-up (document types, "Setup Complete") belongs to the desktop program.
  SystemServices services({.keep_pauses = terminal});
  Player player(Host(host, host, host, services),
                options->settings_dir.empty()
                    ? std::make_unique<QtSettingsStore>()
                    : std::make_unique<QtSettingsStore>(options->settings_dir));
  host.Attach(player);
  services.Attach(player.game());
  Player::StartOptions start;
  if (options->seed) start.seed = static_cast<std::uint32_t>(*options->seed);
  start.program_folder = FindDataFolder(TARVE_INSTALLED_DATA_DIR);
  player.game().output.blank_line_after_turn = options->blank_line;
  // Piped input replays a script, which a kept game would change: only a player at a terminal
  // (or one who asks) goes on where a game was left.
  if (const std::string data = UserDataFolder();
      !data.empty() && (options->resume || isatty(STDIN_FILENO) != 0)) {
    start.resume_folder = data + "/resume";
  }

  if (options->dump) {
    // The game is read, not opened: start-up without a command line and without a launcher.
    player.Prepare(start);
    if (!LoadGameText(player.game(), options->file)) return 1;
    Dump(host, player.game().text);
    return 0;
  }

  switch (player.Start(options->file, start)) {
    case Player::Started::kFailed:
      return 1;
    case Player::Started::kLauncher:
      if (!player.game_open()) return host.NothingChosen() ? 0 : 1;
      break;
    case Player::Started::kGame:
      break;
  }

  // Each input line is what the command box receives on Enter. The game ends with the input,
  // when the player quits, or when the game itself is over (won or lost), since its command box
  // takes nothing more.
  while (!host.Closed() && !player.game_over()) {
    std::optional<std::string> line = host.ReadLine();
    if (!line) break;
    player.SubmitCommand(*line);
  }
  return 0;
}

}  // namespace
}  // namespace tarve

int main(int argc, char** argv) {
  // Qt's own diagnostics (an audio system that cannot be reached) would land among the game's
  // lines; what matters to the player reaches the script log instead.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  // The event loop a wave sound plays in.
  QCoreApplication application(argc, argv);
  std::vector<std::string> args(argv + 1, argv + argc);
  return tarve::Run(args);
}
