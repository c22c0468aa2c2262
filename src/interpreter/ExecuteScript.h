// Script statements: the dispatcher that runs one statement (or a text of several lines), and
// the handlers of the statements that belong to no other part of the player.
#pragma once

#include <string_view>

namespace tarve {

struct Game;

void ExecuteScript(Game& game, std::string_view line);

// Runs the inner lines of the procedure of that name (taken literally).
void RunProcedure(Game& game, std::string_view name);
// Prints the inner lines of the text block of that name.
void DisplayText(Game& game, std::string_view name);

// Depth guard shared by statements and function calls. Enter returns false (after logging once)
// when the nesting is too deep; the whole top-level statement is then abandoned.
bool EnterNestedScript(Game& game);
void LeaveNestedScript(Game& game);

// One level of nesting for as long as the object lives. Code that runs several statements in a
// row (a procedure, a loop, a function) asks MustStop() after each: it holds when the nesting
// grew too deep somewhere below, or when a statement below replaced the whole game (a saved
// game was loaded), so that nothing of the old game's script runs on.
class NestedScript {
 public:
  explicit NestedScript(Game& game);
  ~NestedScript();
  NestedScript(const NestedScript&) = delete;
  NestedScript& operator=(const NestedScript&) = delete;

  bool entered() const { return entered_; }
  bool MustStop() const;

 private:
  Game& game_;
  bool entered_;
  int depth_ = 0;
  int games_opened_ = 0;
};

}  // namespace tarve
