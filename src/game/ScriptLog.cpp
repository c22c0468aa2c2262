#include "game/ScriptLog.h"

#include <fstream>

#include "base/Text.h"
#include "game/Game.h"

namespace tarve {

namespace {

void AppendToWindow(Game& game, std::string_view message) {
  std::string& text = game.log.text;
  text.append(message);
  text.append("\r\n");
  if (text.size() > kMaxLogWindowBytes) {
    // The older half goes, up to a line end, so that trimming happens seldom.
    const std::size_t line_end = text.find("\r\n", text.size() - kMaxLogWindowBytes / 2);
    text.erase(0, line_end == std::string::npos ? text.size() : line_end + 2);
  }
  game.host.window.ScriptLogAppended(message);
}

std::string CutWithEllipsis(std::string_view text, std::size_t chars) {
  std::string shown = CharLeft(text, chars);
  if (shown.size() < text.size()) shown += "...";
  return shown;
}

}  // namespace

std::string LogFileBudget::Admit(std::string_view text, std::string_view line_end) {
  if (full_) return std::string();
  if (written_ + text.size() <= kMaxLogFileBytes) {
    written_ += text.size();
    return std::string(text);
  }
  full_ = true;
  return "Warning: This run has written " + std::to_string(written_) +
         " bytes to the log file - further messages are not written to it." + std::string(line_end);
}

void LogScriptError(Game& game, std::string_view message) {
  std::string line = message.size() > kMaxLogMessageChars
                         ? CutWithEllipsis(message, kMaxLogMessageChars)
                         : std::string(message);
  if (!line.empty()) AppendToWindow(game, line);
  line += "\r\n";
  AppendToLogFile(game, line);
  ChargeStatements(game, kLoggedMessageStatements);
}

std::string ShortenedForLog(std::string_view text) { return CutWithEllipsis(text, 60); }

std::string QuotedForLog(std::string_view text) {
  return CutWithEllipsis(TrimView(text), kMaxQuotedChars);
}

void AppendToLogFile(Game& game, std::string_view text) {
  ScriptLogState& log = game.log;
  const Settings& settings = game.settings;
  if (!settings.log_errors) return;
  if (!log.unwritable_file.empty() && log.unwritable_file == settings.log_file) return;
  // The file is opened and closed for every message, so that the log is complete on disk even
  // when the player is stopped abruptly.
  const std::string admitted = log.file_budget.Admit(text, "\r\n");
  if (admitted.empty()) return;
  std::ofstream file(settings.log_file, std::ios::binary | std::ios::app);
  if (file) {
    file << admitted;
    file.flush();
  }
  if (!file) {
    log.unwritable_file = settings.log_file;
    AppendToWindow(game, "Warning: Unable to write to the log file " + settings.log_file +
                             " - messages go to the log window only.");
  }
}

}  // namespace tarve
