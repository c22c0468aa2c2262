// Reading a game from disk into its numbered lines: the text reader, the merging of libraries,
// the block index, the rewriting of brace blocks, `else` lines and continued lines, and the
// load-time check.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarve {

struct Game;

// Reads the game at `path` into game.text. game.game_path and game.program_folder must already
// be set. False (after its messages) when the game cannot be used.
bool ReadGameFile(Game& game, const std::string& path);

// The lines of a text file as the reader sees them: decoded, split, tabs expanded. False when
// the file cannot be read.
bool ReadTextFileLines(const std::string& path, std::vector<std::string>& lines);

// The rewriting steps, in the order the reader runs them (exposed for tests).
bool RewriteBraces(Game& game);
void JoinElseLines(Game& game);
void JoinContinuations(Game& game);

}  // namespace tarve
