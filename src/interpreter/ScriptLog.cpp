#include "interpreter/ScriptLog.h"

#include <fstream>

#include "script/Game.h"

namespace tarve {

namespace {

void AppendToWindow(Game& game, std::string_view message) {
  game.log.text.append(message);
  game.log.text.append("\r\n");
  game.host.ScriptLogAppended(message);
}

}  // namespace

void LogScriptError(Game& game, std::string_view message) {
  if (!message.empty()) AppendToWindow(game, message);
  std::string line(message);
  line += "\r\n";
  AppendToLogFile(game, line);
}

void AppendToLogFile(Game& game, std::string_view text) {
  ScriptLogState& log = game.log;
  const Settings& settings = game.settings;
  if (!settings.log_errors) return;
  if (!log.unwritable_file.empty() && log.unwritable_file == settings.log_file) return;
  // The file is opened and closed for every message, so that the log is complete on disk even
  // when the player is stopped abruptly.
  std::ofstream file(settings.log_file, std::ios::binary | std::ios::app);
  if (file) {
    file << text;
    file.flush();
  }
  if (!file) {
    log.unwritable_file = settings.log_file;
    AppendToWindow(game, "Warning: Unable to write to the log file " + settings.log_file +
                             " - messages go to the log window only.");
  }
}

}  // namespace tarve
