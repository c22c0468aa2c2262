#include "script/OpenGame.h"

#include <ctime>

#include "base/Files.h"
#include "interpreter/ScriptLog.h"
#include "script/Game.h"
#include "script/GameReader.h"

namespace tarve {

namespace {

std::string FormatNow(const char* format) {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char buffer[64];
  std::size_t n = std::strftime(buffer, sizeof buffer, format, &local);
  return std::string(buffer, n);
}

}  // namespace

bool LoadGameText(Game& game, const std::string& path) {
  game.game_file = path;
  game.game_path = FolderOf(path);
  if (ReadGameFile(game, path)) return true;
  LogScriptError(game, "Unable to open " + path);
  game.host.ShowMessage("Unable to open " + path, "Error", kOkOnly);
  game.host.CloseProgress();
  return false;
}

bool OpenGame(Game& game, const std::string& path) {
  game.host.ShowProgress("Initialising...", 0);
  LogScriptError(game, std::string("Tarve ") + kPlayerVersion);
  LogScriptError(game, "Opening file " + path + " on " + FormatNow("%d/%m/%Y") + " at " +
                           FormatNow("%H:%M:%S"));
  ResetGameTables(game);
  game.game_was_open = true;
  if (!LoadGameText(game, path)) return false;
  LogScriptError(game, "Finished loading file.");
  game.host.CloseProgress();
  return true;
}

}  // namespace tarve
