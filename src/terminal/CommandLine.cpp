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
    "  --transcript FILE  copy the output to FILE\n"
    "  --plain            write text without styles, even on a terminal\n"
    "  --blank-line       print a blank line after each turn\n"
    "  --resume           keep an unfinished game and offer it again, even when the input\n"
    "                     is not a terminal\n"
    "  --help             show this help\n";

std::optional<CommandLine> ParseCommandLine(const std::vector<std::string>& args,
                                            std::string& error) {
  CommandLine result;
  std::vector<std::string> files;
  bool options_done = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
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
