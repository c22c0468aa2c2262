// The one interface through which the engine reaches the outside world: the output pane, message
// boxes and dialogs, waiting for the player, the main window's state and platform services. The
// desktop window, the terminal player and the tests each implement it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarve {

// Message box styles and answers, with the numbers games and players have always used.
enum MessageStyle : int {
  kOkOnly = 0,
  kOkCancel = 1,
  kYesNo = 4,
  kExclamation = 48,  // added to a style: the box shows a warning icon
};
enum MessageAnswer : int { kAnswerOk = 1, kAnswerCancel = 2, kAnswerYes = 6, kAnswerNo = 7 };

struct Rgb {
  uint8_t r = 0, g = 0, b = 0;
  bool operator==(const Rgb&) const = default;
};

enum class Alignment { kLeft, kCentre, kRight };

class Host {
 public:
  virtual ~Host() = default;

  // The output pane. Text is inserted at the end and takes the styles set before it; a line
  // break arrives as "\r\n" inside the text.
  virtual void InsertText(std::string_view text) = 0;
  virtual void SetBold(bool) {}
  virtual void SetItalic(bool) {}
  virtual void SetUnderline(bool) {}
  virtual void SetColour(Rgb) {}
  virtual void SetFontName(const std::string&) {}
  virtual void SetFontSize(float) {}
  virtual void SetAlignment(Alignment) {}
  virtual void ClearOutput() {}
  virtual void Repaint() {}

  // A message box; `style` is a MessageStyle, possibly plus kExclamation. Returns a
  // MessageAnswer.
  virtual int ShowMessage(const std::string& text, const std::string& title, int style) = 0;
  // An input box; nothing when the player cancels it.
  virtual std::optional<std::string> InputBox(const std::string& title, const std::string& prompt) {
    (void)title;
    (void)prompt;
    return std::nullopt;
  }

  // Every message of the script log, as it is logged (the log window, the terminal's --log).
  virtual void ScriptLogAppended(std::string_view message) { (void)message; }

  // Progress window shown while a game loads.
  virtual void ShowProgress(const std::string& caption, int percent) {
    (void)caption;
    (void)percent;
  }
  virtual void CloseProgress() {}
};

}  // namespace tarve
