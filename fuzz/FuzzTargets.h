// What each fuzz target does with one input, shared by the libFuzzer entry points
// (fuzz/*Fuzzer.cpp) and the regression test that replays every input that once broke the player
// (tests/regression/). Each runner builds a fresh Game, so one input never depends on another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "game/Host.h"

namespace tarve {
class Player;
}  // namespace tarve

namespace tarve::fuzz {

// A scratch folder that the runners write their files into, with copies of the data folder
// (tarve.dat) and of the games the turn and statement targets play. The games are copied so
// that nothing a game does (copying files, writing logs) can touch the source tree.
class Workspace {
 public:
  // `source_dir` is the repository: data/, examples/ and tests/games/ are copied from it.
  explicit Workspace(const std::string& source_dir);
  ~Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  bool ok() const { return ok_; }
  const std::string& folder() const { return folder_; }
  const std::string& program_folder() const { return program_folder_; }
  // The games a turn input may choose from (its first byte picks one), in a fixed order: the
  // project's games of at most 64 KB.
  const std::vector<std::string>& games() const { return games_; }
  // The game the statement target runs its lines in.
  const std::string& statement_game() const { return statement_game_; }

 private:
  bool ok_ = false;
  std::string folder_;
  std::string program_folder_;
  std::vector<std::string> games_;
  std::string statement_game_;
};

// A host that shows nothing and answers every question from a queue of lines taken from the
// input, the way the terminal player answers them from standard input: a message box reads a
// line (beginning with "y" or "o": Yes/OK), an input box a line, a selection a number, and a wait
// takes the next line as a key press or a command. With the queue empty, boxes are cancelled and
// waits end, so no input can leave the player waiting.
class FuzzHost : public OutputPane, public Dialogs, public GameWindow, public PlatformServices {
 public:
  std::deque<std::string> lines;
  Player* player = nullptr;  // the command box that waits hand their lines to
  bool closed = false;

  void InsertText(std::string_view text) override { printed += text.size(); }
  int ShowMessage(const std::string& text, const std::string& title, int style) override;
  std::optional<std::string> InputBox(const std::string& title, const std::string& prompt) override;
  void ProcessEventsUntil(const std::function<bool()>& done) override;
  int ShowSelection(const std::string& prompt, const std::vector<std::string>& answers) override;
  void CloseGame(bool end_program) override {
    (void)end_program;
    closed = true;
  }

 private:
  std::optional<std::string> Next();
  std::size_t printed = 0;
};

// The input split into lines at "\n" (a "\r" before it stays in the line), at most `max_lines`.
std::deque<std::string> SplitLines(std::string_view input, std::size_t max_lines);

// The game reader: the input as game.gwl, opened as a game. When the input holds
// kLibrarySeparator, what follows it is written as lib.gwl beside the game, so a game that says
// `!include <lib.gwl>` reads it.
inline constexpr std::string_view kLibrarySeparator = "\n#--library--#\n";
void RunGameReader(const Workspace& workspace, const uint8_t* data, std::size_t size);

// The compiled reader: the input as game.cgw, opened as a game with the shipped keyword table.
void RunCompiledReader(const Workspace& workspace, const uint8_t* data, std::size_t size);

// Whole turns: the first byte picks one of the workspace's games, which is opened; every
// following line is typed into the command box (and answers the questions the game asks).
void RunTurns(const Workspace& workspace, const uint8_t* data, std::size_t size);

// Script statements: in the statement game, the first three lines become the values of the
// string variables `fuzz1` and `fuzz2` and the numeric variable `fuzzn`; every following line
// is run as a statement.
void RunStatements(const Workspace& workspace, const uint8_t* data, std::size_t size);

// Saved games: the demo game is opened and played a little, then the input, written as
// game.tsg beside copies of the demo game and the statement game, is loaded over it (a saved
// game names its game file; "demo.gwl" and "statements.gwl" are found beside it), and a turn is
// played in whatever game stands then.
void RunSavedGame(const Workspace& workspace, const uint8_t* data, std::size_t size);

// A saved game of `game_file` (one of the workspace's games) after `commands` were typed, that
// names its game by file name alone: a seed for the saved-game target.
std::string MakeSavedGameSeed(const Workspace& workspace, const std::string& game_file,
                              const std::vector<std::string>& commands);

}  // namespace tarve::fuzz
