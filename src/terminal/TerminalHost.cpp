#include "terminal/TerminalHost.h"

#include <charconv>

#include "base/Text.h"
#include "player/Player.h"
#include "player/Settings.h"

namespace tarve {

namespace {

// The selection dialog has room for eight answers; later ones are never offered.
constexpr std::size_t kShownAnswers = 8;

}  // namespace

TerminalHost::TerminalHost(std::istream& in, std::ostream& out, bool terminal, bool styled)
    : in_(in), out_(out), terminal_(terminal), styled_(styled) {}

TerminalHost::~TerminalHost() {
  if (styled_ && style_emitted_) out_ << "\x1b[0m";
  out_.flush();
}

bool TerminalHost::OpenLogFile(const std::string& path) {
  log_.open(path, std::ios::binary | std::ios::app);
  return static_cast<bool>(log_);
}

bool TerminalHost::OpenTranscript(const std::string& path) {
  transcript_.open(path, std::ios::binary | std::ios::trunc);
  return static_cast<bool>(transcript_);
}

std::optional<std::string> TerminalHost::ReadLine() {
  out_.flush();
  if (transcript_.is_open()) transcript_.flush();
  std::string line;
  if (input_ended_ || !std::getline(in_, line)) {
    input_ended_ = true;
    return std::nullopt;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

void TerminalHost::Write(std::string_view text) {
  // The pane's line breaks are CR LF; a terminal wants LF.
  std::string converted;
  converted.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    converted.push_back(text[i]);
  }
  out_ << converted;
  if (transcript_.is_open()) transcript_ << converted;
}

void TerminalHost::WriteLine(std::string_view text) {
  Write(text);
  Write("\n");
}

void TerminalHost::EmitStyle() {
  if (!styled_ || !style_dirty_) return;
  std::string sgr = "\x1b[0";
  if (bold_) sgr += ";1";
  if (italic_) sgr += ";3";
  if (underline_) sgr += ";4";
  // Black is the pane's ordinary text colour: on a terminal it is the terminal's own colour,
  // which stays readable on dark backgrounds.
  if (colour_ == Rgb{255, 0, 0})
    sgr += ";91";
  else if (colour_ == Rgb{0, 0, 255})
    sgr += ";94";
  else if (colour_ == Rgb{255, 255, 0})
    sgr += ";93";
  else if (colour_ == Rgb{0, 128, 0})
    sgr += ";32";
  sgr += "m";
  out_ << sgr;
  style_dirty_ = false;
  style_emitted_ = true;
}

void TerminalHost::ResetStyle() {
  if (styled_ && style_emitted_) {
    out_ << "\x1b[0m";
    style_dirty_ = true;
  }
}

void TerminalHost::InsertText(std::string_view text) {
  // Once the player has quit, the game's window is gone: nothing more is shown.
  if (text.empty() || closed_) return;
  EmitStyle();
  Write(text);
  pane_has_text_ = true;
}

void TerminalHost::SetBold(bool on) {
  style_dirty_ |= bold_ != on;
  bold_ = on;
}
void TerminalHost::SetItalic(bool on) {
  style_dirty_ |= italic_ != on;
  italic_ = on;
}
void TerminalHost::SetUnderline(bool on) {
  style_dirty_ |= underline_ != on;
  underline_ = on;
}
void TerminalHost::SetColour(Rgb colour) {
  style_dirty_ |= !(colour_ == colour);
  colour_ = colour;
}

void TerminalHost::ClearOutput() {
  // A pipe or a file keeps everything: only a screen is cleared, and only when the game has
  // written on it (opening a game clears its empty pane, which must not wipe the terminal).
  if (terminal_ && !closed_ && pane_has_text_) out_ << "\x1b[2J\x1b[H";
  pane_has_text_ = false;
}

int TerminalHost::ShowMessage(const std::string& text, const std::string& title, int style) {
  const int buttons = style & 7;
  const bool asks = buttons == kYesNo || buttons == kOkCancel;
  if (closed_) return buttons == kYesNo ? kAnswerNo : (asks ? kAnswerCancel : kAnswerOk);
  ResetStyle();
  WriteLine("[" + title + "] " + text);
  if (!asks) return kAnswerOk;
  std::optional<std::string> answer = ReadLine();
  const bool yes = answer && !answer->empty() &&
                   (StartsWithNoCase(*answer, "y") || StartsWithNoCase(*answer, "o"));
  if (buttons == kYesNo) return yes ? kAnswerYes : kAnswerNo;
  return yes ? kAnswerOk : kAnswerCancel;
}

std::optional<std::string> TerminalHost::InputBox(const std::string& title,
                                                  const std::string& prompt) {
  if (closed_) return std::nullopt;
  ResetStyle();
  WriteLine("[" + title + "] " + prompt);
  return ReadLine();
}

void TerminalHost::ScriptLogAppended(std::string_view message) {
  if (!log_.is_open()) return;
  std::string line(message);
  line += '\n';
  const std::string admitted = log_budget_.Admit(line, "\n");
  if (admitted.empty()) return;
  log_ << admitted;
  log_.flush();
}

void TerminalHost::ProcessEventsUntil(const std::function<bool()>& done) {
  // Each input line is what the command box would receive on Enter: while a key wait is
  // pending it ends the wait; otherwise it goes to the command box (where a waiting `enter`
  // takes it).
  if (player_ == nullptr) return;
  while (!done() && !closed_) {
    // Once the game is over its command box takes nothing, so only a key could still end a
    // wait; the terminal player ends after this turn anyway.
    if (player_->game_over() && !player_->waiting_for_key()) {
      player_->EndOfInput();
      return;
    }
    std::optional<std::string> line = ReadLine();
    if (!line) {
      player_->EndOfInput();
      return;
    }
    player_->SubmitCommand(*line);
  }
}

int TerminalHost::ShowSelection(const std::string& prompt,
                                const std::vector<std::string>& answers) {
  // The game has printed the prompt itself ("- PROMPT"), so only the answers are listed.
  (void)prompt;
  if (closed_) return -1;
  ResetStyle();
  const std::size_t shown = std::min(answers.size(), kShownAnswers);
  if (shown == 0) return -1;
  for (std::size_t i = 0; i < shown; ++i) {
    WriteLine("  " + std::to_string(i + 1) + ". " + answers[i]);
  }
  // The dialog opens with its first answer chosen: anything but the number of another answer
  // confirms that one. When the input has ended, nobody confirms anything.
  std::optional<std::string> line = ReadLine();
  if (!line) return -1;
  const std::string_view text = TrimView(*line);
  std::size_t number = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (ec != std::errc() || end != text.data() + text.size() || number < 1 || number > shown) {
    return 0;
  }
  return static_cast<int>(number) - 1;
}

std::optional<std::string> TerminalHost::ChooseSavedGameFile(bool save) {
  std::optional<std::string> path = InputBox(save ? "Save game" : "Load game", "File name:");
  if (!path || TrimView(*path).empty()) return std::nullopt;
  return Trim(*path);
}

void TerminalHost::ShowLauncher() {
  // Without a file the player lists the installed games and the player picks one by its
  // number.
  if (player_ == nullptr) return;
  const std::vector<InstalledGame> games = ReadInstalledGames(player_->settings_store());
  if (games.empty()) {
    WriteLine("No games are installed. Name a game file to play it: tarve-cli GAME.gwl");
    return;
  }
  WriteLine("Installed games:");
  for (std::size_t i = 0; i < games.size(); ++i) {
    WriteLine("  " + std::to_string(i + 1) + ". " + games[i].name);
  }
  const std::string range = "1 to " + std::to_string(games.size());
  for (;;) {
    WriteLine("Type the number of the game to play (" + range + "):");
    std::optional<std::string> line = ReadLine();
    if (!line) {
      nothing_chosen_ = true;
      return;
    }
    const std::string answer = Trim(*line);
    std::size_t number = 0;
    auto [end, ec] = std::from_chars(answer.data(), answer.data() + answer.size(), number);
    if (ec == std::errc() && end == answer.data() + answer.size() && number >= 1 &&
        number <= games.size()) {
      player_->OpenGame(games[number - 1].file);
      return;
    }
    WriteLine("There is no game " + answer + " in the list.");
  }
}

void TerminalHost::CloseGame(bool end_program) {
  // Without a launcher to return to, closing the game always ends the terminal player.
  (void)end_program;
  closed_ = true;
}

}  // namespace tarve
