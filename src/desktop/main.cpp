// tarve: the player's desktop program. A game or saved game named on the command line opens in
// the game window; without one the launcher opens. -h, --help and --version answer without a
// display.
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "base/Files.h"
#include "desktop/DesktopHost.h"
#include "desktop/DesktopServices.h"
#include "platform/DocumentTypes.h"
#include "platform/QtSettingsStore.h"
#include "player/OptionsForm.h"
#include "player/Player.h"

#ifndef TARVE_INSTALLED_DATA_DIR
#define TARVE_INSTALLED_DATA_DIR "/usr/local/share/tarve"
#endif

namespace {

bool IsSet(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

// Without a display the toolkit would abort; a player on a machine without one is better told
// where to turn.
bool CanShowWindows() {
  return IsSet("QT_QPA_PLATFORM") || IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY");
}

const char* const kUsage =
    "Usage: tarve [FILE]\n"
    "Plays a GWL game (.gwl, .cgw) or a saved game (.tsg) in a window; without a FILE, opens\n"
    "the launcher of the installed games. To play in a terminal, use tarve-cli.\n"
    "\n"
    "  -h, --help   show this help\n"
    "  --version    show the version\n";

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2) {
    const std::string option = argv[1];
    if (option == "-h" || option == "--help") {
      std::fputs(kUsage, stdout);
      return 0;
    }
    if (option == "--version") {
      std::printf("tarve %s\n", tarve::kPlayerVersion);
      return 0;
    }
  }
  if (!CanShowWindows()) {
    std::fputs(
        "tarve: there is no display to open the game window on (neither DISPLAY nor "
        "WAYLAND_DISPLAY is set).\n"
        "To play in this terminal, run: tarve-cli GAME.gwl\n",
        stderr);
    return 1;
  }
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Tarve"));
  QApplication::setApplicationVersion(QString::fromLatin1(tarve::kPlayerVersion));
  QApplication::setDesktopFileName(QStringLiteral("tarve"));
  // The program ends when the player leaves the game or the launcher, not when the game window
  // hides on the way back to the launcher.
  QApplication::setQuitOnLastWindowClosed(false);

  // The command line is the program's arguments (those the toolkit took for itself removed),
  // joined by single blanks and taken whole.
  std::string command_line;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) command_line += ' ';
    command_line += argv[i];
  }

  tarve::DesktopHost host;
  tarve::DesktopServices services({.keep_pauses = true});
  tarve::Player player(tarve::Host(host, host, host, services),
                       std::make_unique<tarve::QtSettingsStore>());
  host.Attach(player);
  services.Attach(player.game());

  tarve::Player::StartOptions start;
  start.program_folder = tarve::FindDataFolder(TARVE_INSTALLED_DATA_DIR);
  start.first_run.enabled = true;
  // A game left unfinished is offered again the next time it is opened.
  if (const std::string data = tarve::UserDataFolder(); !data.empty()) {
    start.resume_folder = data + "/resume";
  }
  start.first_run.associate_file_type = [](const std::string& description,
                                           const std::string& extension) {
    tarve::AssociateFileType(description, extension);
  };
  int status = 0;
  // A turn that runs out of memory stops its game itself; reading a huge game or saved game at
  // start-up ends the program with a message instead of an abort.
  try {
    if (player.Start(command_line, start) == tarve::Player::Started::kFailed) {
      status = 1;
    } else if (!host.ending()) {
      status = QApplication::exec();
    }
  } catch (const std::bad_alloc&) {
    std::fputs("tarve: out of memory; the game was stopped.\n", stderr);
    status = 3;
  }
  // The application goes before the windows, which must not reach it meanwhile.
  host.Detach();
  return status;
}
