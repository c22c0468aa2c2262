// The terminal player's host: the output pane becomes standard output (with ANSI styles on a
// terminal), message boxes and dialogs become lines that are printed and answered on standard
// input, waiting for the player means reading the next input line, and the launcher is a
// numbered list of the installed games. On a terminal the lines are edited with history, the text
// is wrapped at the screen's width, and a status line shows where the player is.
#pragma once

#include <cstdio>
#include <fstream>
#include <istream>
#include <memory>
#include <ostream>
#include <string>

#include "game/Host.h"
#include "game/ScriptLog.h"
#include "terminal/LineEditor.h"
#include "terminal/ScreenText.h"

namespace tarve {

class Player;

// The same file (device and inode, through links): a file the run reads is never written.
bool SameFile(const std::string& a, const std::string& b);
// A transcript or log named like a game or a saved game, or naming the file `played`, would be
// written over a file this run reads or a game kept for later.
bool NamesAGame(const std::string& path, const std::string& played);

class TerminalHost : public OutputPane, public Dialogs, public GameWindow {
 public:
  struct Options {
    bool terminal = false;     // standard output is a terminal (pauses are kept)
    bool ansi = false;         // ... and it takes escape sequences (TERM is not "dumb")
    bool styled = false;       // the formatting codes become ANSI styles
    bool interactive = false;  // both ends are a terminal: lines are edited, answers checked
    bool status_line = false;  // the top line shows the location and the status text
    int width = 0;             // wrap at this width; -1: the terminal's, 0: no wrapping
    std::string data_folder;   // the user's data folder (the command history)
  };
  TerminalHost(std::istream& in, std::ostream& out, Options options);
  ~TerminalHost() override;

  // The player whose command box the input lines reach.
  void Attach(Player& player) { player_ = &player; }

  bool OpenLogFile(const std::string& path);
  // Appends to `path`; false when it cannot be written.
  bool OpenTranscript(const std::string& path);
  void CloseTranscript() { transcript_.close(); }

  // The next line for the command box (on a terminal after the prompt "> ", kept in the
  // history); nothing at the end of the input.
  std::optional<std::string> ReadLine();
  // Hands a line to the command box, or on a terminal runs it as a player command when it
  // begins with "#".
  void Submit(const std::string& line);
  bool InputEnded() const { return input_ended_; }
  // The player quit: the game is closed and the program ends.
  bool Closed() const { return closed_; }
  // The launcher was left without a game: the input ended before one was chosen.
  bool NothingChosen() const { return nothing_chosen_; }

  // Shows all the text so far (before a pause: the word in hand too).
  void FlushScreen();

  // Writes text of the player's own (not the game's) on a line of its own.
  void WriteLine(std::string_view text);

  void InsertText(std::string_view text) override;
  void SetBold(bool on) override;
  void SetItalic(bool on) override;
  void SetUnderline(bool on) override;
  void SetColour(Rgb colour) override;
  void ClearOutput() override;
  void SetLocation(const std::string& location) override;
  void SetStatusText(const std::string& text) override;

  int ShowMessage(const std::string& text, const std::string& title, int style) override;
  std::optional<std::string> InputBox(const std::string& title, const std::string& prompt) override;
  void ScriptLogAppended(std::string_view message) override;
  void ProcessEventsUntil(const std::function<bool()>& done) override;
  int ShowSelection(const std::string& prompt, const std::vector<std::string>& answers) override;
  std::optional<std::string> ChooseSavedGameFile(bool save) override;
  void GameSaved(const std::string& path) override;
  void ShowLauncher() override;
  void CloseGame(bool end_program) override;

 private:
  // Writes game or player text: to the screen (wrapped) and to the transcript.
  void Write(std::string_view text, bool to_screen = true);
  // Writes to the screen only, through the wrapper (style sequences).
  void Screen(std::string_view text);
  // Reads an answer to a question; on a terminal `prompt` stands before it. Recorded in the
  // transcript.
  std::optional<std::string> ReadAnswer(const std::string& prompt);
  std::optional<std::string> ReadInput(const std::string& prompt);
  int ScreenWidth() const;
  void DrawStatusLine();
  void EmitStyle();
  // Message boxes and dialogs are written in the terminal's own colours.
  void ResetStyle();

  std::istream& in_;
  std::ostream& out_;
  Options options_;
  bool terminal_;
  bool styled_;
  std::unique_ptr<LineEditor> editor_;  // only when interactive
  LineWrapper wrapper_;
  // The game's echo of a command the line editor already shows: what is still to come of it,
  // and what was held back of it so far (shown after all if the text turns out otherwise).
  std::string echo_expected_;
  std::string echo_held_;
  std::string location_, status_text_;
  int status_rows_ = 0;  // the terminal's rows when the scroll region was last set
  bool input_ended_ = false;
  bool closed_ = false;
  bool nothing_chosen_ = false;
  Player* player_ = nullptr;
  bool pane_has_text_ = false;  // the game has written since the pane was last cleared
  std::ofstream log_;
  LogFileBudget log_budget_;  // what this run wrote with --log
  std::ofstream transcript_;

  bool bold_ = false, italic_ = false, underline_ = false;
  Rgb colour_{};
  bool style_dirty_ = false;
  bool style_emitted_ = false;
};

}  // namespace tarve
