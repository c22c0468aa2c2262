// The script log: every warning and error the interpreter finds in a game's script, and the
// game's own `debug` lines. It keeps the whole run's messages for the log window and, when the
// player asks for it (the LogErrors and LogFile settings), appends them to a log file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarve {

struct Game;

// The log window keeps the newest messages of the run up to this many bytes; a game that logs an
// error on every round of its loops would otherwise fill the memory. The log file keeps all.
inline constexpr std::size_t kMaxLogWindowBytes = std::size_t{4} << 20;

struct ScriptLogState {
  std::string text;  // the run's messages, each followed by CR LF (the newest kMaxLogWindowBytes)
  // A log file that could not be written is noted once in the log and then skipped until the
  // player names another file.
  std::string unwritable_file;
};

void LogScriptError(Game& game, std::string_view message);

// `text` for a log message: its first 60 characters, and "..." when there is more.
std::string ShortenedForLog(std::string_view text);

// Appends `text` as it stands to the log file when the player keeps one (LogErrors). A file that
// cannot be written is noted once in the log window and skipped until LogFile changes.
void AppendToLogFile(Game& game, std::string_view text);

}  // namespace tarve
