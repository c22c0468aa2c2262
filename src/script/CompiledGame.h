// Compiled games (.cgw): a magic text, then a stream of one-byte keyword tokens, quoted
// parameters, literal words and text blocks, turned back into the lines of the game. The writer
// makes such files from a game's text for authors who distribute compiled games.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "script/KeywordTable.h"

namespace tarve {

struct Game;

inline constexpr std::string_view kCompiledMagic = "TCGF001";

// Turns the bytes of a compiled game into lines. False (after the "Invalid or corrupted file!"
// message) when the file does not start with the magic text.
bool ReadCompiledGame(Game& game, std::string_view bytes, std::vector<std::string>& lines);

// Writes the lines of a game in compiled form. Every line comes back from the reader as the
// line with its leading and trailing blanks removed (text block lines exactly). A character
// that a compiled game cannot hold is reported in `problems` (with its line number) and the
// result is then not usable.
std::string CompileGame(const KeywordTable& table, const std::vector<std::string>& lines,
                        std::vector<std::string>& problems);

}  // namespace tarve
