// The script log: every warning and error the interpreter finds in a game's script, and the
// game's own `debug` lines. It keeps the whole run's messages for the log window and, when the
// player asks for it (the LogErrors and LogFile settings), appends them to a log file.
#pragma once

#include <string>
#include <string_view>

namespace tarve {

struct Game;

struct ScriptLogState {
  std::string text;  // every message of the run, each followed by CR LF
  // A log file that could not be written is noted once in the log and then skipped until the
  // player names another file.
  std::string unwritable_file;
};

void LogScriptError(Game& game, std::string_view message);

// Appends `text` as it stands to the log file when the player keeps one (LogErrors). A file that
// cannot be written is noted once in the log window and skipped until LogFile changes.
void AppendToLogFile(Game& game, std::string_view text);

}  // namespace tarve
