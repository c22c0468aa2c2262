#include "output/Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "script/CommonCode.h"

namespace tarve {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kStandardKeyPrompt = "|nPress a key to continue...";
// What the file gets before each new game's output: three line ends and 26 hyphens, with no
// line end after them, so the game's first line follows the hyphens.
constexpr std::string_view kOutputFileSeparator = "\r\n\r\n\r\n--------------------------";

// The palette entries the colour codes name: light red, black, light blue, light yellow, green.
constexpr Rgb kRed{255, 0, 0};
constexpr Rgb kBlack{0, 0, 0};
constexpr Rgb kBlue{0, 0, 255};
constexpr Rgb kYellow{255, 255, 0};
constexpr Rgb kGreen{0, 128, 0};

bool OutputFileWanted(const Game& game) {
  return game.settings.output_file && game.output.file != nullptr;
}

// Writes without flushing; PrintText flushes once when its whole text is written.
void WriteOutputFileUnflushed(Game& game, std::string_view text) {
  if (!OutputFileWanted(game) || text.empty()) return;
  std::fwrite(text.data(), 1, text.size(), game.output.file.get());
}

void InsertPlain(Game& game, std::string_view run) {
  if (run.empty()) return;
  game.host.pane.InsertText(run);
  WriteOutputFileUnflushed(game, run);
}

// A style code: changes the pane unless the player's OverrideEffects setting ignores them.
template <typename Change>
void ApplyEffect(Game& game, Change change) {
  if (!game.settings.override_effects) change(game.host.pane);
}

// The size a "|s" code gives, read from the two characters after the "s": blanks are skipped,
// digits and one decimal point are read, and any other character ends the number. A sign is
// such a character, so "|s-5" and "|s+5" read no digits and give 0, the default size.
float FontSizeOfCode(std::string_view chars) {
  std::string number;
  bool point = false;
  for (const char c : chars) {
    if (c == ' ') continue;
    if (c >= '0' && c <= '9') {
      number.push_back(c);
    } else if (c == '.' && !point) {
      point = true;
      number.push_back(c);
    } else {
      break;
    }
  }
  return static_cast<float>(Val(number));
}

// Acts on the code that starts at `code` (the text just after a bar) and returns how many
// characters the code takes, bar included. The codes are tested in a fixed order against the
// first one or two characters; the first that matches wins.
std::size_t ApplyCode(Game& game, std::string_view code) {
  Host& host = game.host;
  const Settings& settings = game.settings;
  const char first = code.empty() ? '\0' : code[0];
  const char second = code.size() < 2 ? '\0' : code[1];
  switch (first) {
    case 'b':
      ApplyEffect(game, [](OutputPane& h) { h.SetBold(true); });
      return 2;
    case 'x':
      if (second == 'b') {
        ApplyEffect(game, [&](OutputPane& h) { h.SetBold(settings.default_font_bold); });
        return 3;
      }
      if (second == 'u') {
        ApplyEffect(game, [](OutputPane& h) { h.SetUnderline(false); });
        return 3;
      }
      if (second == 'i') {
        ApplyEffect(game, [&](OutputPane& h) { h.SetItalic(settings.default_font_italic); });
        return 3;
      }
      return 1;  // "|xn" means something only at the very end of the text
    case 'u':
      ApplyEffect(game, [](OutputPane& h) { h.SetUnderline(true); });
      return 2;
    case 'i':
      ApplyEffect(game, [](OutputPane& h) { h.SetItalic(true); });
      return 2;
    case 'c': {
      const Rgb* colour = nullptr;
      switch (second) {
        case 'r':
          colour = &kRed;
          break;
        case 'b':
          colour = &kBlack;
          break;
        case 'l':
          colour = &kBlue;
          break;
        case 'y':
          colour = &kYellow;
          break;
        case 'g':
          colour = &kGreen;
          break;
        default:
          break;
      }
      if (colour != nullptr) {
        ApplyEffect(game, [colour](OutputPane& h) { h.SetColour(*colour); });
        return 3;
      }
      // Any other letter (or none) clears the pane; the letter itself is then printed.
      host.pane.ClearOutput();
      return 2;
    }
    case 'n':
      host.pane.InsertText(kLineEnd);
      WriteOutputFileUnflushed(game, kLineEnd);
      return 2;
    case 's': {
      // The code always takes two characters as its size: "|s1Big" is size 1 followed by
      // "ig", and "|s00" returns to the default size.
      const std::string_view chars = code.substr(1, ByteOffsetOfChar(code.substr(1), 2));
      SetOutputFontSize(game, FontSizeOfCode(chars));
      return 4;
    }
    case 'j':
      if (second == 'c') {
        host.pane.SetAlignment(Alignment::kCentre);
        return 3;
      }
      if (second == 'l') {
        host.pane.SetAlignment(Alignment::kLeft);
        return 3;
      }
      if (second == 'r') {
        host.pane.SetAlignment(Alignment::kRight);
        return 3;
      }
      return 1;
    case 'w':
      WaitForKey(game, "<>");
      host.pane.Repaint();
      return 2;
    default:
      return 1;  // an unknown code: only the bar is dropped
  }
}

}  // namespace

void PrintText(Game& game, std::string_view text) {
  if (!game.output.enabled) return;
  ChargeStatements(game, kPrintedLineStatements +
                             static_cast<long>(text.size() / kPrintedBytesPerStatement));
  bool line_end = true;
  if (text.ends_with("|xn")) {
    text.remove_suffix(3);
    line_end = false;
  }

  std::size_t pos = 0;
  while (true) {
    if (pos < text.size() && text[pos] == '|') {
      // Counts are in characters; a code cut short by the end of the text takes what is left.
      const std::size_t chars = ApplyCode(game, text.substr(pos + 1));
      pos += ByteOffsetOfChar(text.substr(pos), chars);
    }
    const std::size_t next = text.find('|', pos);
    if (next == std::string_view::npos) {
      InsertPlain(game, text.substr(pos));
      break;
    }
    InsertPlain(game, text.substr(pos, next - pos));
    pos = next;
  }

  if (line_end) {
    game.host.pane.InsertText(kLineEnd);
    WriteOutputFileUnflushed(game, kLineEnd);
  }
  if (OutputFileWanted(game)) std::fflush(game.output.file.get());
}

void SetOutputFont(Game& game, std::string_view name) {
  if (game.settings.override_all_fonts) name = {};
  if (name.empty()) name = game.output.current_default_font_name;
  game.host.pane.SetFontName(std::string(name));
}

void SetOutputFontSize(Game& game, float size) {
  if (game.settings.override_all_fonts) size = 0;
  if (size == 0) size = game.output.current_default_font_size;
  // A default size below 0 (a hand-edited setting) cannot be shown: the size stays as it was.
  if (size < 0) return;
  game.host.pane.SetFontSize(size);
}

void WriteOutputFile(Game& game, std::string_view text) {
  if (!OutputFileWanted(game)) return;
  WriteOutputFileUnflushed(game, text);
  std::fflush(game.output.file.get());
}

void WaitForKey(Game& game, std::string_view parameter) {
  const std::string prompt = parameter.empty() ? std::string(kStandardKeyPrompt)
                                               : RetrieveParameter(game, parameter, true);
  PrintText(game, prompt);

  Host& host = game.host;
  host.window.EnableGameControls(false);
  game.output.waiting_for_key = true;
  // Once no more input can come (the terminal's input has ended), waiting would never end.
  if (!game.run.input_ended) {
    host.window.ProcessEventsUntil([&game] { return !game.output.waiting_for_key; });
  }
  game.output.waiting_for_key = false;
  host.window.EnableGameControls(true);
  host.window.FocusCommandBox();
}

namespace {

// Opens `path` to append to, created when missing. A FIFO with nobody reading it is refused
// at once instead of blocking the game until a reader comes.
std::FILE* OpenForAppending(const std::string& path) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0644);
  if (fd < 0) return nullptr;
  const int flags = ::fcntl(fd, F_GETFL);
  if (flags >= 0) ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK);
  std::FILE* file = ::fdopen(fd, "ab");
  if (file == nullptr) ::close(fd);
  return file;
}

}  // namespace

void StartGameOutput(Game& game) {
  OutputState& output = game.output;
  const Settings& settings = game.settings;
  output.enabled = true;
  if (settings.output_file) {
    if (output.file == nullptr) {
      output.file.reset(OpenForAppending(settings.out_file));
      if (output.file == nullptr) {
        LogScriptError(game, "Warning: Unable to open the output file " + settings.out_file +
                                 " - the game's text is not copied to it.");
      } else if (std::fseek(output.file.get(), 0, SEEK_END) == 0 &&
                 std::ftell(output.file.get()) > 0) {
        WriteOutputFile(game, kOutputFileSeparator);
      }
    } else {
      WriteOutputFile(game, kOutputFileSeparator);
    }
  }

  SetOutputFont(game, "");
  SetOutputFontSize(game, 0);
  game.host.pane.SetBold(settings.default_font_bold);
  game.host.pane.SetItalic(settings.default_font_italic);
}

void CloseOutputFile(Game& game) { game.output.file.reset(); }

}  // namespace tarve
