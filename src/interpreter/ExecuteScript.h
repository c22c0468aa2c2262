// Script statements: the dispatcher that runs one statement (or a text of several lines), and
// the handlers of the statements that belong to no other part of the player.
#pragma once

#include <limits>
#include <string_view>

namespace tarve {

struct Game;

// Nested statements (procedures, functions, room scripts) deeper than this are cut off.
inline constexpr int kMaxScriptDepth = 200;
// One top-level statement (a turn's command script, a room script, a start script) may run at
// most this many statements, procedures and function calls in all: nested loops and procedures
// that call each other many times over would otherwise freeze the player. Game::statement_limit
// holds it. Building long texts counts as well (ChargeStatements).
inline constexpr long kMaxStatementsPerRun = 1000000;
// Game::total_statement_limit when nothing bounds the statements of a whole game.
inline constexpr long kNoTotalStatementLimit = std::numeric_limits<long>::max();

void ExecuteScript(Game& game, std::string_view line);

// Runs the inner lines of the procedure of that name (taken literally).
void RunProcedure(Game& game, std::string_view name);
// Prints the inner lines of the text block of that name.
void DisplayText(Game& game, std::string_view name);

// Counts `count` statements against the running top-level statement's limit and the game's
// total limit. Past either, the rest of the top-level statement is abandoned (logged once) and
// the result is false. Outside every statement it counts nothing.
bool ChargeStatements(Game& game, long count);

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
