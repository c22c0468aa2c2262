#include "terminal/TerminalHost.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>

#include "base/Text.h"
#include "player/Player.h"
#include "player/Settings.h"
#include "terminal/PlayerCommands.h"

namespace tarve {

namespace {

// The selection dialog has room for eight answers; later ones are never offered.
constexpr std::size_t kShownAnswers = 8;

// A yes/no answer: y, yes, o, ok for yes; n, no, c, cancel for no; nothing for anything else.
std::optional<bool> YesOrNo(std::string_view answer) {
  const std::string word = LCase(std::string(TrimView(answer)));
  if (word == "y" || word == "yes" || word == "o" || word == "ok") return true;
  if (word == "n" || word == "no" || word == "c" || word == "cancel") return false;
  return std::nullopt;
}

// The number `text` when it is one from 1 to `count`.
std::optional<std::size_t> NumberInRange(std::string_view text, std::size_t count) {
  text = TrimView(text);
  std::size_t number = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (ec != std::errc() || end != text.data() + text.size() || number < 1 || number > count) {
    return std::nullopt;
  }
  return number;
}

}  // namespace

bool SameFile(const std::string& a, const std::string& b) {
  struct stat first {};
  struct stat second {};
  return !a.empty() && !b.empty() && stat(a.c_str(), &first) == 0 &&
         stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

bool NamesAGame(const std::string& path, const std::string& played) {
  const std::string extension = LCase(CharRight(path, 4));
  return extension == ".gwl" || extension == ".cgw" || extension == ".tsg" ||
         SameFile(path, played);
}

TerminalHost::TerminalHost(std::istream& in, std::ostream& out, Options options)
    : in_(in),
      out_(out),
      options_(std::move(options)),
      terminal_(options_.terminal),
      styled_(options_.styled) {
  if (options_.interactive) editor_ = std::make_unique<LineEditor>();
  if (options_.status_line) {
    // The text scrolls below the status line, starting at the bottom of the screen.
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 2) {
      out_ << "\x1b[" << size.ws_row << ";1H";
      DrawStatusLine();
    } else {
      options_.status_line = false;
    }
  }
}

TerminalHost::~TerminalHost() {
  std::string rest;
  wrapper_.Flush(rest);
  out_ << rest;
  if (styled_ && style_emitted_) out_ << "\x1b[0m";
  // The whole screen scrolls again.
  if (status_rows_ > 0) out_ << "\0337\x1b[r\0338";
  out_.flush();
}

bool TerminalHost::OpenLogFile(const std::string& path) {
  log_.open(path, std::ios::binary | std::ios::app);
  return static_cast<bool>(log_);
}

bool TerminalHost::OpenTranscript(const std::string& path) {
  transcript_.close();
  transcript_.clear();
  transcript_.open(path, std::ios::binary | std::ios::app);
  return static_cast<bool>(transcript_);
}

void TerminalHost::FlushScreen() {
  std::string rest;
  wrapper_.Flush(rest);
  out_ << rest;
  out_.flush();
}

int TerminalHost::ScreenWidth() const {
  if (options_.width >= 0) return options_.width;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 0;
  return size.ws_col;
}

std::optional<std::string> TerminalHost::ReadInput(const std::string& prompt) {
  FlushScreen();
  if (transcript_.is_open()) transcript_.flush();
  if (input_ended_) return std::nullopt;
  if (editor_) {
    DrawStatusLine();
    out_.flush();
    std::optional<std::string> line = editor_->Read(prompt);
    wrapper_.AtLineStart();
    if (!line) {
      input_ended_ = true;
      out_ << "\n";  // Ctrl-D leaves the cursor after the prompt
    }
    return line;
  }
  std::string line;
  if (!std::getline(in_, line)) {
    input_ended_ = true;
    return std::nullopt;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

std::optional<std::string> TerminalHost::ReadLine() {
  echo_expected_.clear();
  echo_held_.clear();
  const bool takes_commands = player_ != nullptr && player_->game_open() &&
                              !player_->waiting_for_key() && !player_->waiting_for_line() &&
                              !player_->game_over();
  if (editor_ && player_ != nullptr && player_->game_open()) {
    editor_->UseHistoryFile(HistoryFileFor(options_.data_folder, player_->game().game_file));
  }
  const bool answers_enter = player_ != nullptr && player_->waiting_for_line();
  std::optional<std::string> line = ReadInput(takes_commands ? "> " : "");
  if (!line) return line;
  if (answers_enter && transcript_.is_open()) transcript_ << PrintableText(*line) << "\n";
  if (editor_ && takes_commands && !line->empty()) {
    editor_->Remember(*line);
    // The line stands on the screen after its prompt already.
    if ((*line)[0] != '#') echo_expected_ = "> " + *line + "\r\n";
  }
  return line;
}

void TerminalHost::Submit(const std::string& line) {
  if (player_ == nullptr) return;
  // Piped lines all go to the game, as they always have: the player's commands are a terminal's.
  if (editor_ && !line.empty() && line[0] == '#' && !player_->waiting_for_key() &&
      !player_->waiting_for_line()) {
    if (transcript_.is_open()) transcript_ << "> " << PrintableText(line) << "\n";
    RunPlayerCommand(*this, *player_, line);
    return;
  }
  player_->SubmitCommand(line);
}

std::optional<std::string> TerminalHost::ReadAnswer(const std::string& prompt) {
  std::optional<std::string> answer = ReadInput(editor_ ? prompt : std::string());
  if (answer && transcript_.is_open()) {
    transcript_ << PrintableText((editor_ ? prompt : std::string()) + *answer) << "\n";
  }
  return answer;
}

void TerminalHost::Screen(std::string_view text) {
  wrapper_.SetWidth(ScreenWidth());
  std::string out;
  wrapper_.Put(text, out);
  out_ << out;
}

void TerminalHost::Write(std::string_view text, bool to_screen) {
  // The pane's line breaks are CR LF; a terminal wants LF.
  std::string converted;
  converted.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    converted.push_back(text[i]);
  }
  const std::string printable = PrintableText(converted);
  if (to_screen) Screen(printable);
  if (transcript_.is_open()) transcript_ << printable;
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
  Screen(sgr);
  style_dirty_ = false;
  style_emitted_ = true;
}

void TerminalHost::ResetStyle() {
  if (styled_ && style_emitted_) {
    Screen("\x1b[0m");
    style_dirty_ = true;
  }
}

void TerminalHost::InsertText(std::string_view text) {
  // Once the player has quit, the game's window is gone: nothing more is shown.
  if (text.empty() || closed_) return;
  if (!echo_expected_.empty()) {
    // The line editor already shows the command: the game's echo of it goes to the transcript.
    if (echo_expected_.starts_with(text)) {
      echo_expected_.erase(0, text.size());
      echo_held_ += text;
      Write(text, /*to_screen=*/false);
      return;
    }
    // Not the echo after all: what was held back is shown.
    Screen(PrintableText(echo_held_));
    echo_expected_.clear();
    echo_held_.clear();
  }
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
  if (options_.ansi && !closed_ && pane_has_text_) {
    std::string rest;
    wrapper_.Flush(rest);
    out_ << rest << "\x1b[2J" << (options_.status_line ? "\x1b[2;1H" : "\x1b[H");
    wrapper_.AtLineStart();
    status_rows_ = 0;  // drawn again below, with its scroll region
    DrawStatusLine();
  }
  pane_has_text_ = false;
}

void TerminalHost::SetLocation(const std::string& location) {
  location_ = location;
  DrawStatusLine();
}

void TerminalHost::SetStatusText(const std::string& text) {
  status_text_ = text;
  DrawStatusLine();
}

void TerminalHost::DrawStatusLine() {
  if (!options_.status_line || closed_) return;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row < 3 || size.ws_col == 0) return;
  // The location on the left, the game's status text on the right, cut to the screen's width.
  const std::string left = " " + PrintableText(Trim(location_));
  const std::string right = PrintableText(status_text_) + " ";
  auto columns = [](const std::string& text) {
    int count = 0;
    for (const char c : text) count += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return count;
  };
  const int width = size.ws_col;
  std::string line = left;
  const int gap = width - columns(left) - columns(right);
  if (gap > 0) line += std::string(static_cast<std::size_t>(gap), ' ') + right;
  std::string cut;
  int used = 0;
  for (const char c : line) {
    const bool starts = (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    if (starts && used == width) break;
    used += starts;
    cut.push_back(c);
  }
  cut.append(static_cast<std::size_t>(width - used), ' ');
  std::string sequence = "\0337";
  // The scroll region keeps the game's text off the status line; setting it moves the cursor,
  // which is saved and restored around.
  if (size.ws_row != status_rows_) {
    sequence += "\x1b[2;" + std::to_string(size.ws_row) + "r";
    status_rows_ = size.ws_row;
  }
  sequence += "\x1b[1;1H\x1b[0;7m" + cut + "\x1b[0m\0338";
  out_ << sequence;
}

int TerminalHost::ShowMessage(const std::string& text, const std::string& title, int style) {
  const int buttons = style & 7;
  const bool asks = buttons == kYesNo || buttons == kOkCancel;
  if (closed_) return buttons == kYesNo ? kAnswerNo : (asks ? kAnswerCancel : kAnswerOk);
  ResetStyle();
  const std::string message = "[" + title + "] " + text;
  // The question goes out as text (wrapped, control characters dropped); the line editor's
  // prompt stays short, as it cannot wrap a prompt that starts in the middle of a line.
  WriteLine(message);
  if (!asks) return kAnswerOk;
  bool yes = false;
  if (editor_) {
    // On a terminal only a clear answer counts; the end of the input answers no.
    for (;;) {
      std::optional<std::string> answer = ReadAnswer("(y/n) ");
      if (!answer) break;
      if (std::optional<bool> choice = YesOrNo(*answer)) {
        yes = *choice;
        break;
      }
    }
  } else {
    std::optional<std::string> answer = ReadAnswer("");
    yes = answer && !answer->empty() &&
          (StartsWithNoCase(*answer, "y") || StartsWithNoCase(*answer, "o"));
  }
  if (buttons == kYesNo) return yes ? kAnswerYes : kAnswerNo;
  return yes ? kAnswerOk : kAnswerCancel;
}

std::optional<std::string> TerminalHost::InputBox(const std::string& title,
                                                  const std::string& prompt) {
  if (closed_) return std::nullopt;
  ResetStyle();
  const std::string line = "[" + title + "] " + prompt;
  if (editor_ && line.size() < 40) return ReadAnswer(PrintableText(line) + " ");
  WriteLine(line);
  return ReadAnswer(editor_ ? "? " : "");
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
    Submit(*line);
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
  // On a terminal the question is asked until a number in range comes. Piped, the dialog opens
  // with its first answer chosen: anything but the number of another answer confirms that one.
  // When the input has ended, nobody confirms anything.
  const std::string question = "Type a number (1 to " + std::to_string(shown) + "): ";
  for (;;) {
    std::optional<std::string> line = ReadAnswer(question);
    if (!line) return -1;
    if (std::optional<std::size_t> number = NumberInRange(*line, shown)) {
      return static_cast<int>(*number) - 1;
    }
    if (!editor_) return 0;
  }
}

std::optional<std::string> TerminalHost::ChooseSavedGameFile(bool save) {
  std::optional<std::string> path = InputBox(save ? "Save game" : "Load game", "File name:");
  if (!path || TrimView(*path).empty()) return std::nullopt;
  return Trim(*path);
}

void TerminalHost::GameSaved(const std::string& path) {
  // A save typed as "save" goes to the last file without asking: the player is told which.
  ResetStyle();
  WriteLine("Saved to " + path + ".");
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
    const std::string question = "Type the number of the game to play (" + range + "):";
    if (!editor_) WriteLine(question);
    std::optional<std::string> line = ReadAnswer(question + " ");
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
