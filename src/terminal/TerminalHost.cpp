#include "terminal/TerminalHost.h"

#include "base/Text.h"

namespace tarve {

TerminalHost::TerminalHost(std::istream& in, std::ostream& out, bool styled)
    : in_(in), out_(out), styled_(styled) {}

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

void TerminalHost::InsertText(std::string_view text) {
  if (text.empty()) return;
  EmitStyle();
  Write(text);
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
  if (styled_) out_ << "\x1b[2J\x1b[H";
}

int TerminalHost::ShowMessage(const std::string& text, const std::string& title, int style) {
  if (styled_ && style_emitted_) {
    out_ << "\x1b[0m";
    style_dirty_ = true;
  }
  WriteLine("[" + title + "] " + text);
  const int buttons = style & 7;
  if (buttons != kYesNo && buttons != kOkCancel) return kAnswerOk;
  std::optional<std::string> answer = ReadLine();
  const bool yes = answer && !answer->empty() &&
                   (StartsWithNoCase(*answer, "y") || StartsWithNoCase(*answer, "o"));
  if (buttons == kYesNo) return yes ? kAnswerYes : kAnswerNo;
  return yes ? kAnswerOk : kAnswerCancel;
}

std::optional<std::string> TerminalHost::InputBox(const std::string& title,
                                                  const std::string& prompt) {
  WriteLine("[" + title + "] " + prompt);
  return ReadLine();
}

void TerminalHost::ScriptLogAppended(std::string_view message) {
  if (!log_.is_open()) return;
  log_ << message << '\n';
  log_.flush();
}

}  // namespace tarve
