#include "terminal/CommandLine.h"

#include <charconv>

namespace tarve {

const char* const kUsage =
    "Usage: tarve-cli [options] [FILE]\n"
    "Plays a Tarve game (.gwl, .cgw) or a saved game (.tsg) in the terminal. Without FILE,\n"
    "lists the installed games and asks which one to play.\n"
    "\n"
    "  --dump             print the game's lines and blocks as the reader made them\n"
    "  --log FILE         append every script-log message to FILE\n"
    "  --settings DIR     keep the settings in DIR/Tarve.conf instead of the user's\n"
    "                     ~/.config/Tarve/Tarve.conf\n"
    "  --seed N           seed the random numbers with N\n"
    "  --transcript FILE  append the output and the answers typed to FILE\n"
    "  --plain            write text without styles, even on a terminal\n"
    "  --blank-line       print a blank line after each turn\n"
    "  --width N          wrap the text at N columns (default: the terminal's width;\n"
    "                     piped output is not wrapped)\n"
    "  --no-status        no status line at the top of the terminal\n"
    "  --resume           keep an unfinished game and offer it again, even when the input\n"
    "                     is not a terminal\n"
    "  -h, --help         show this help\n"
    "  --version          show the version\n"
    "\n"
    "On a terminal, commands that begin with # are the player's own: type #help.\n";

#ifndef TARVE_VERSION
#define TARVE_VERSION "unknown"
#endif
const char* const kVersion = "tarve-cli " TARVE_VERSION "\n";

std::optional<CommandLine> ParseCommandLine(const std::vector<std::string>& args,
                                            std::string& error) {
  CommandLine result;
  std::vector<std::string> files;
  bool options_done = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (!options_done && arg == "-h") {
      result.help = true;
      continue;
    }
    if (options_done || arg.size() < 2 || arg[0] != '-' || arg[1] != '-') {
      files.push_back(arg);
      continue;
    }
    auto value = [&](std::string& out) {
      if (i + 1 >= args.size()) {
        error = "tarve-cli: " + arg + " needs a value";
        return false;
      }
      out = args[++i];
      return true;
    };
    if (arg == "--") {
      options_done = true;
    } else if (arg == "--dump") {
      result.dump = true;
    } else if (arg == "--plain") {
      result.plain = true;
    } else if (arg == "--blank-line") {
      result.blank_line = true;
    } else if (arg == "--resume") {
      result.resume = true;
    } else if (arg == "--help") {
      result.help = true;
    } else if (arg == "--version") {
      result.version = true;
    } else if (arg == "--no-status") {
      result.no_status = true;
    } else if (arg == "--width") {
      std::string text;
      if (!value(text)) return std::nullopt;
      int width = 0;
      auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), width);
      if (ec != std::errc() || end != text.data() + text.size() || width < 10) {
        error = "tarve-cli: --width needs a number of columns, 10 or more, not '" + text + "'";
        return std::nullopt;
      }
      result.width = width;
    } else if (arg == "--log") {
      if (!value(result.log_file)) return std::nullopt;
    } else if (arg == "--settings") {
      if (!value(result.settings_dir)) return std::nullopt;
    } else if (arg == "--transcript") {
      if (!value(result.transcript_file)) return std::nullopt;
    } else if (arg == "--seed") {
      std::string text;
      if (!value(text)) return std::nullopt;
      unsigned long seed = 0;
      auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), seed);
      if (ec != std::errc() || end != text.data() + text.size()) {
        error = "tarve-cli: --seed needs a whole number, not '" + text + "'";
        return std::nullopt;
      }
      result.seed = seed;
    } else {
      error = "tarve-cli: unknown option " + arg;
      return std::nullopt;
    }
  }
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (i > 0) result.file += ' ';
    result.file += files[i];
  }
  return result;
}

}  // namespace tarve
