// Text on its way to the terminal: control characters a game could use to take over the terminal
// are removed, and lines are wrapped between words at a width that may change between writes.
#pragma once

#include <string>
#include <string_view>

namespace tarve {

// The text with every control character removed but the line feed (a tab becomes a blank):
// escape sequences, bells, backspaces, carriage returns and the C1 controls of UTF-8.
std::string PrintableText(std::string_view text);

// Breaks lines between words so that none is wider than the screen. Style sequences of the
// player's own (ESC [ ... m) take no room; the game's own line breaks are kept.
class LineWrapper {
 public:
  // 0: no wrapping, the text passes unchanged.
  void SetWidth(int width) { width_ = width; }
  int width() const { return width_; }
  // Appends to `out` what is to be written for `text`. The last word is held back until its
  // end is known, unless Flush is called.
  void Put(std::string_view text, std::string& out);
  // Appends the word held back: the cursor must be where the text ends (before a prompt).
  void Flush(std::string& out);
  // The cursor is at the start of a line (Enter was pressed, the screen was cleared).
  void AtLineStart() { column_ = 0; }

 private:
  void FlushWord(std::string& out);

  int width_ = 0;
  int column_ = 0;
  int spaces_ = 0;  // blanks before the word held back, dropped when the line breaks there
  std::string word_;
  int word_width_ = 0;
};

}  // namespace tarve
