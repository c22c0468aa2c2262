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

// A message quotes at most this many characters of a script line or a value ("..." marks the
// cut), and a whole message holds at most kMaxLogMessageChars: a game that logs a long line on
// every round of a loop would otherwise write gigabytes.
inline constexpr std::size_t kMaxQuotedChars = 200;
inline constexpr std::size_t kMaxLogMessageChars = 1000;

// What one run writes to a log file: past this many bytes, one line says that further messages
// were dropped, and nothing more is written.
inline constexpr std::size_t kMaxLogFileBytes = std::size_t{16} << 20;

// Keeps the count of what one run wrote to a log file.
class LogFileBudget {
 public:
  // What to write for `text` (a message with its line end `line_end`): the text while it fits,
  // once the note that further messages are dropped, then nothing.
  std::string Admit(std::string_view text, std::string_view line_end);

 private:
  std::size_t written_ = 0;
  bool full_ = false;
};

struct ScriptLogState {
  std::string text;  // the run's messages, each followed by CR LF (the newest kMaxLogWindowBytes)
  // A log file that could not be written is noted once in the log and then skipped until the
  // player names another file.
  std::string unwritable_file;
  LogFileBudget file_budget;
};

void LogScriptError(Game& game, std::string_view message);

// `text` for a log message: its first 60 characters, and "..." when there is more.
std::string ShortenedForLog(std::string_view text);

// A script line or value as a message quotes it: trimmed, its first kMaxQuotedChars characters,
// and "..." when there is more.
std::string QuotedForLog(std::string_view text);

// Appends `text` as it stands to the log file when the player keeps one (LogErrors). A file that
// cannot be written is noted once in the log window and skipped until LogFile changes.
void AppendToLogFile(Game& game, std::string_view text);

}  // namespace tarve
