// Reading lines on a terminal with editing and history: arrows, Home and End, word moves
// (Ctrl or Alt with the arrows, Alt-B and Alt-F), search in the history (Ctrl-R); the history is
// kept in a file per game.
#pragma once

#include <optional>
#include <string>

struct editline;
struct history;

namespace tarve {

class LineEditor {
 public:
  LineEditor();
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  // Shows `prompt` and reads a line; nothing at the end of the input (Ctrl-D on an empty line).
  std::optional<std::string> Read(const std::string& prompt);
  // Keeps `line` in the history (and its file, when there is one).
  void Remember(const std::string& line);
  // The history from now on comes from and goes to `path` (empty: none is kept); the folder is
  // made when missing.
  void UseHistoryFile(const std::string& path);

 private:
  static char* Prompt(editline* el);

  editline* el_;
  history* history_;
  std::string prompt_;
  std::string history_file_;
};

// The history file of the game at `game_file` in the user's data folder `data_folder`: one per
// game, named after the game with a short hash of its full path.
std::string HistoryFileFor(const std::string& data_folder, const std::string& game_file);

}  // namespace tarve
