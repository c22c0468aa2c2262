// The options of the terminal player.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarve {

struct CommandLine {
  bool dump = false;
  bool plain = false;
  bool blank_line = false;
  bool help = false;
  bool version = false;
  bool no_status = false;  // no status line at the top of a terminal
  bool resume = false;  // keep and offer unfinished games even when the input is not a terminal
  std::string log_file;
  std::string settings_dir;  // empty: the user's own settings
  std::string transcript_file;
  std::optional<unsigned long> seed;
  // Wrap the text at this many columns; unset: a terminal's own width, no wrapping when piped.
  std::optional<int> width;
  // The file to open: the remaining arguments joined by single blanks, as the player has always
  // taken its command line as one string. Empty: the player picks an installed game.
  std::string file;
};

// Parses argv; on a usage error returns nothing and sets `error`.
std::optional<CommandLine> ParseCommandLine(const std::vector<std::string>& args,
                                            std::string& error);

extern const char* const kUsage;
// The program's name and version, as --version prints it.
extern const char* const kVersion;

}  // namespace tarve
