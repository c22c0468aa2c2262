#include "terminal/PlayerCommands.h"

#include <array>
#include <string_view>

#include "base/Text.h"
#include "player/Player.h"
#include "player/SavedGames.h"
#include "terminal/TerminalHost.h"

namespace tarve {

namespace {

struct Context {
  TerminalHost& host;
  Player& player;
};

struct PlayerCommand {
  std::string_view name;
  std::string_view argument;  // shown in the help: what the command takes
  std::string_view help;
  void (*run)(Context& context, const std::string& argument);
};

// The game's own file is never written to; a transcript goes to no game or saved game at all.
bool IsGameFile(Context& c, const std::string& path, bool transcript = false) {
  if (transcript ? !NamesAGame(path, c.player.game().game_file) &&
                       !SameFile(path, c.player.game().run.current_saved_game_path)
                 : !SameFile(path, c.player.game().game_file)) {
    return false;
  }
  c.host.WriteLine(path + " is a game or a saved game: choose another name.");
  return true;
}

void Help(Context& c, const std::string& argument);

constexpr std::array kCommands = {
    PlayerCommand{"undo", "", "take back the last turn",
                  [](Context& c, const std::string&) {
                    if (!c.player.Undo()) c.host.WriteLine("There is nothing to undo.");
                  }},
    PlayerCommand{"restart", "", "start the game again",
                  [](Context& c, const std::string&) { c.player.MenuRestart(); }},
    PlayerCommand{"save", " FILE", "save to FILE, or ask for a name",
                  [](Context& c, const std::string& file) {
                    if (file.empty()) {
                      c.player.MenuSaveAs();
                    } else if (!IsGameFile(c, file) && SaveGame(c.player.game(), file)) {
                      c.host.WriteLine("Saved to " + file + ".");
                    }
                  }},
    PlayerCommand{"load", " FILE", "load FILE, or ask for a name",
                  [](Context& c, const std::string& file) {
                    if (file.empty()) {
                      c.player.MenuLoad();
                    } else {
                      c.player.LoadSavedGame(file);
                    }
                  }},
    PlayerCommand{"transcript", " FILE|off", "copy the text to FILE; off stops",
                  [](Context& c, const std::string& file) {
                    if (file.empty() || LCase(file) == "off") {
                      c.host.CloseTranscript();
                      c.host.WriteLine("The transcript is off.");
                    } else if (!IsGameFile(c, file, /*transcript=*/true)) {
                      c.host.WriteLine(c.host.OpenTranscript(file)
                                           ? "The transcript goes to " + file + "."
                                           : "Cannot write the transcript file " + file + ".");
                    }
                  }},
    PlayerCommand{"quit", "", "leave the game",
                  [](Context& c, const std::string&) { c.player.RequestClose(); }},
    PlayerCommand{"help", "", "list these commands", &Help},
};

void Help(Context& c, const std::string&) {
  c.host.WriteLine("The player's own commands (anything else goes to the game):");
  for (const PlayerCommand& command : kCommands) {
    std::string usage = "  #" + std::string(command.name) + std::string(command.argument);
    usage.resize(std::max<std::size_t>(usage.size() + 1, 24), ' ');
    c.host.WriteLine(usage + std::string(command.help));
  }
}

}  // namespace

void RunPlayerCommand(TerminalHost& host, Player& player, const std::string& line) {
  const std::string text = Trim(line.substr(1));
  const std::size_t blank = text.find(' ');
  const std::string name = LCase(text.substr(0, blank));
  const std::string argument = blank == std::string::npos ? "" : Trim(text.substr(blank));
  Context context{host, player};
  for (const PlayerCommand& command : kCommands) {
    if (command.name == name) {
      command.run(context, argument);
      return;
    }
  }
  host.WriteLine("There is no player command #" + name + "; #help lists them.");
}

}  // namespace tarve
