// The terminal player's host: the output pane becomes standard output (with ANSI styles on a
// terminal), message boxes and dialogs become lines that are printed and answered on standard
// input.
#pragma once

#include <cstdio>
#include <fstream>
#include <istream>
#include <ostream>
#include <string>

#include "script/Host.h"

namespace tarve {

class TerminalHost : public Host {
 public:
  TerminalHost(std::istream& in, std::ostream& out, bool styled);
  ~TerminalHost() override;

  bool OpenLogFile(const std::string& path);
  bool OpenTranscript(const std::string& path);

  // The next input line without its line end; nothing at the end of the input.
  std::optional<std::string> ReadLine();
  bool InputEnded() const { return input_ended_; }

  // Writes text of the player's own (not the game's) on a line of its own.
  void WriteLine(std::string_view text);

  void InsertText(std::string_view text) override;
  void SetBold(bool on) override;
  void SetItalic(bool on) override;
  void SetUnderline(bool on) override;
  void SetColour(Rgb colour) override;
  void ClearOutput() override;

  int ShowMessage(const std::string& text, const std::string& title, int style) override;
  std::optional<std::string> InputBox(const std::string& title, const std::string& prompt) override;
  void ScriptLogAppended(std::string_view message) override;

 private:
  void Write(std::string_view text);
  void EmitStyle();

  std::istream& in_;
  std::ostream& out_;
  bool styled_;
  bool input_ended_ = false;
  std::ofstream log_;
  std::ofstream transcript_;

  bool bold_ = false, italic_ = false, underline_ = false;
  Rgb colour_{};
  bool style_dirty_ = false;
  bool style_emitted_ = false;
};

}  // namespace tarve
