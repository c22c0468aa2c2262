// Script statements: the dispatcher that runs one statement (or a text of several lines), and
// the handlers of the statements that belong to no other part of the player.
#pragma once

#include <string_view>

namespace tarve {

struct Game;

// Nested statements (procedures, functions, room scripts) deeper than this are cut off.
inline constexpr int kMaxScriptDepth = 200;

void ExecuteScript(Game& game, std::string_view line);

// Runs the inner lines of the procedure of that name (taken literally).
void RunProcedure(Game& game, std::string_view name);
// Prints the inner lines of the text block of that name.
void DisplayText(Game& game, std::string_view name);

// Depth guard shared by statements and function calls. Enter returns false (after logging once)
// when the nesting is too deep; the whole top-level statement is then abandoned.
bool EnterNestedScript(Game& game);
void LeaveNestedScript(Game& game);

}  // namespace tarve
