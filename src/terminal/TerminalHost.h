// The terminal player's host: the output pane becomes standard output (with ANSI styles on a
// terminal), message boxes and dialogs become lines that are printed and answered on standard
// input, waiting for the player means reading the next input line, and the launcher is a
// numbered list of the installed games.
#pragma once

#include <cstdio>
#include <fstream>
#include <istream>
#include <ostream>
#include <string>

#include "game/Host.h"
#include "game/ScriptLog.h"

namespace tarve {

class Player;

class TerminalHost : public OutputPane, public Dialogs, public GameWindow {
 public:
  // `terminal`: standard output is a terminal (the screen can be cleared, pauses are kept);
  // `styled`: the formatting codes become ANSI styles.
  TerminalHost(std::istream& in, std::ostream& out, bool terminal, bool styled);
  ~TerminalHost() override;

  // The player whose command box the input lines reach.
  void Attach(Player& player) { player_ = &player; }

  bool OpenLogFile(const std::string& path);
  bool OpenTranscript(const std::string& path);

  // The next input line without its line end; nothing at the end of the input.
  std::optional<std::string> ReadLine();
  bool InputEnded() const { return input_ended_; }
  // The player quit: the game is closed and the program ends.
  bool Closed() const { return closed_; }
  // The launcher was left without a game: the input ended before one was chosen.
  bool NothingChosen() const { return nothing_chosen_; }

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
  void ProcessEventsUntil(const std::function<bool()>& done) override;
  int ShowSelection(const std::string& prompt, const std::vector<std::string>& answers) override;
  std::optional<std::string> ChooseSavedGameFile(bool save) override;
  void ShowLauncher() override;
  void CloseGame(bool end_program) override;

 private:
  void Write(std::string_view text);
  void EmitStyle();
  // Message boxes and dialogs are written in the terminal's own colours.
  void ResetStyle();

  std::istream& in_;
  std::ostream& out_;
  bool terminal_;
  bool styled_;
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
