// tarve-cli: the player in a terminal, for players who prefer one, for authors who script their
// games, and for the transcript tests.
#include <unistd.h>

#include <QCoreApplication>
#include <QtGlobal>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "base/Files.h"
#include "base/Text.h"
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

// The exit status when the memory ran out (1 is a game that could not be opened).
constexpr int kOutOfMemoryStatus = 3;

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

// Interrupted (Ctrl-C, also during a pause): the terminal gets its own colours back and the whole
// screen scrolls again before the program ends as the signal says.
void RestoreTerminal(int signal_number) {
  constexpr char kReset[] = "\x1b[0m\0337\x1b[r\0338";
  if (write(STDOUT_FILENO, kReset, sizeof kReset - 1) < 0) {
    // Nothing more can be done for the terminal.
  }
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
}

// A pause shows the text before it first: the line wrapper may hold its last word back.
class TerminalServices : public SystemServices {
 public:
  TerminalServices(Options options, TerminalHost& host) : SystemServices(options), host_(host) {}
  void Sleep(int milliseconds) override {
    host_.FlushScreen();
    SystemServices::Sleep(milliseconds);
  }

 private:
  TerminalHost& host_;
};

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
  if (options->version) {
    std::cout << kVersion;
    return 0;
  }
  for (const std::string* path : {&options->log_file, &options->transcript_file}) {
    if (!path->empty() && NamesAGame(*path, options->file)) {
      std::cerr << "tarve-cli: " << *path
                << " is a game or a saved game: it is not written over. Name another file.\n";
      return 2;
    }
  }
  TerminalHost::Options screen;
  screen.terminal = isatty(STDOUT_FILENO) != 0;
  const char* term = std::getenv("TERM");
  screen.ansi = screen.terminal && term != nullptr && std::string(term) != "dumb";
  screen.styled = !options->plain && screen.ansi && std::getenv("NO_COLOR") == nullptr;
  screen.interactive = screen.terminal && isatty(STDIN_FILENO) != 0 && !options->dump;
  screen.status_line = screen.interactive && screen.ansi && !options->no_status;
  screen.width = options->width ? *options->width : (screen.terminal ? -1 : 0);
  screen.data_folder = UserDataFolder();
  if (screen.ansi) {
    std::signal(SIGINT, RestoreTerminal);
    std::signal(SIGTERM, RestoreTerminal);
  }
  const bool terminal = screen.terminal;
  TerminalHost host(std::cin, std::cout, screen);
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
  TerminalServices services({.keep_pauses = terminal}, host);
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
    host.Submit(*line);
  }
  if (player.out_of_memory()) {
    std::fputs("tarve-cli: out of memory; the game was stopped.\n", stderr);
    return kOutOfMemoryStatus;
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
  // Running out of memory outside a turn (reading a huge game or saved game) ends the program
  // with a message, not an abort.
  try {
    std::vector<std::string> args(argv + 1, argv + argc);
    return tarve::Run(args);
  } catch (const std::bad_alloc&) {
    std::fputs("tarve-cli: out of memory; the game was stopped.\n", stderr);
    return tarve::kOutOfMemoryStatus;
  }
}
