// Output formatting: PrintText, the one routine through which text reaches the player, with its
// formatting codes; the font operations; waiting for a key; and the plain-text output file.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace tarve {

struct Game;

struct OutputFileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

struct OutputState {
  bool enabled = true;                 // OutputEnabled: "outputoff" clears it
  bool waiting_for_key = false;        // WaitingForKey: a key press ends the wait
  bool blank_line_after_turn = false;  // the terminal player's --blank-line
  std::string current_default_font_name = "Courier New";
  float current_default_font_size = 8.25f;
  // The output file is opened at the first game start while the setting is on and stays open
  // for the rest of the run.
  std::unique_ptr<std::FILE, OutputFileCloser> file;
};

void PrintText(Game& game, std::string_view text);
// Printing a line inside a script costs as much as running kPrintedLineStatements statements
// (the window's pane takes some tens of microseconds for a line), and one more for every
// kPrintedBytesPerStatement bytes of it (formatting codes make printing dearer than building
// text), so that a loop that prints many or long lines meets the statement limit as other loops
// do.
inline constexpr long kPrintedLineStatements = 4;
inline constexpr std::size_t kPrintedBytesPerStatement = 256;
void SetOutputFont(Game& game, std::string_view name);
void SetOutputFontSize(Game& game, float size);
void WriteOutputFile(Game& game, std::string_view text);
// Shows the prompt of `parameter` ("" for the standard prompt, "<text>" for text) and waits for
// a key press.
void WaitForKey(Game& game, std::string_view parameter);

// At every game start: opens the output file or writes its separator, and sets the pane's
// styles to the defaults.
void StartGameOutput(Game& game);
// Closes the output file at the end of the run.
void CloseOutputFile(Game& game);

}  // namespace tarve
