// Statements that reach outside the game: sounds, pictures, opening documents (shell, mailto)
// and the extended functions (advfunc), with the security rules for what a game may open.
#pragma once

#include <string_view>

namespace tarve {

struct Game;

void ExecutePlayWav(Game& game, std::string_view parameter);
void ExecutePlayMidi(Game& game, std::string_view parameter);
void ExecuteShow(Game& game, std::string_view parameter);
void ExecuteShell(Game& game, std::string_view parameter);
void ExecuteMailTo(Game& game, std::string_view parameter);
// `rest` is the line after "advfunc ", trimmed: a four-character code and its parameter.
void ExecuteAdvFunc(Game& game, std::string_view rest);

}  // namespace tarve
