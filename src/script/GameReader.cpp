#include "script/GameReader.h"

#include <algorithm>
#include <map>

#include "base/Files.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "script/CommonCode.h"
#include "script/CompiledGame.h"

namespace tarve {

namespace {

constexpr std::size_t kMaxGameFileBytes = std::size_t{64} << 20;

void ReportTooManyLines(Game& game) {
  LogScriptError(game, "Error: The game has more than " + std::to_string(kMaxGameLines) +
                           " lines, the most a game can hold.");
}

bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

bool IsAddToDefine(const std::string& line, bool synonyms) {
  return synonyms ? line == "define synonyms" : BeginsWith(line, "define game ");
}

// What the libraries' "!addto" sections add, kept until every library is merged and then put in
// place at once: inserting each section where it goes would move every later line of the game
// once per section. The first `define game` and `define synonyms` lines are remembered too, each
// search going on from where the last one stopped. Nothing is inserted before the end, so the
// places found stay where they are.
class AddToSections {
 public:
  int FirstDefine(const GameText& text, bool synonyms) {
    Place& place = synonyms ? synonyms_ : game_;
    for (int i = place.scanned + 1; place.found == 0 && i <= text.LineCount(); ++i) {
      if (IsAddToDefine(text.Line(i), synonyms)) place.found = i;
    }
    place.scanned = place.found != 0 ? place.found : text.LineCount();
    return place.found;
  }

  // Lines to go just before line `target`, after those that were added there before them.
  void Add(int target, std::vector<std::string>::const_iterator first,
           std::vector<std::string>::const_iterator last) {
    std::vector<std::string>& lines = pending_[target];
    lines.insert(lines.end(), first, last);
    pending_lines_ += static_cast<int>(last - first);
  }

  int PendingLines() const { return pending_lines_; }

  // Puts the added lines in place, the last place first so that the others do not move.
  void InsertInto(GameText& text) {
    for (auto it = pending_.rbegin(); it != pending_.rend(); ++it) {
      text.lines.insert(text.lines.begin() + it->first, it->second.begin(), it->second.end());
    }
    pending_.clear();
    pending_lines_ = 0;
  }

 private:
  struct Place {
    int scanned = 0;  // lines 1 to `scanned` have been searched
    int found = 0;    // the first define line among them; 0 when none
  };
  Place game_;
  Place synonyms_;
  std::map<int, std::vector<std::string>> pending_;
  int pending_lines_ = 0;
};

// Where an "!addto" section of a library goes: just before the "end define" of the game's
// first `define game` block or of its `define synonyms` block. 0 when there is no such place.
int FindAddToTarget(Game& game, AddToSections& sections, bool synonyms) {
  GameText& text = game.text;
  const int define_line = sections.FirstDefine(text, synonyms);
  if (define_line == 0 && synonyms) {
    if (!AddLine(text, "define synonyms") || !AddLine(text, "end define")) return -1;
    return text.LineCount();
  }
  if (define_line == 0) return 0;
  for (int i = define_line + 1; i <= text.LineCount(); ++i) {
    if (text.Line(i) == "end define") return i;
  }
  return 0;
}

// Merges one library's lines into the game. False when the game outgrows its line limit.
bool MergeLibrary(Game& game, const std::vector<std::string>& lib, AddToSections& sections) {
  GameText& text = game.text;
  if (!lib.empty() && lib[0] == "!library") {
    auto version = std::find_if(lib.begin(), lib.end(), [](const std::string& line) {
      return line.starts_with("!gwl-version ");
    });
    if (version == lib.end()) LogScriptError(game, "WARNING: Library has no version information.");
  }

  for (std::size_t j = 0; j < lib.size(); ++j) {
    const std::string& line = lib[j];
    if (line.empty() || (line[0] != '!' && line[0] != '\'')) {
      if (!AddLine(text, line)) return false;
    } else if (line == "!addto game" || line == "!addto synonyms") {
      const bool synonyms = line == "!addto synonyms";
      std::size_t section_end = j + 1;
      while (section_end < lib.size() && lib[section_end] != "!end") ++section_end;
      const int target = FindAddToTarget(game, sections, synonyms);
      if (target < 0) return false;
      const std::size_t count = section_end - (j + 1);
      if (target == 0) {
        LogScriptError(game,
                       "Warning: A library adds lines to the game block, but the game has "
                       "no 'define game' block with an 'end define'; the lines are ignored.");
      } else if (count > 0) {
        if (text.LineCount() + sections.PendingLines() + static_cast<int>(count) > kMaxGameLines) {
          return false;
        }
        auto first = lib.begin() + static_cast<std::ptrdiff_t>(j + 1);
        sections.Add(target, first, first + static_cast<std::ptrdiff_t>(count));
      }
      j = section_end;
    } else if (line == "!library" || line[0] == '\'' || line.starts_with("!gwl-version ")) {
      // header, version and comment lines
    } else {
      LogScriptError(game, "Unknown library keycode - " + line);
    }
  }
  return true;
}

enum class IncludeResult { kMerged, kNotFound, kTooManyLines };

IncludeResult IncludeLibrary(Game& game, int line_number, bool game_path_is_program_folder,
                             AddToSections& sections) {
  const std::string lib = RetrieveParameter(game, game.text.Line(line_number), true);
  std::vector<std::string> lib_lines;
  LogScriptError(game, "Including library " + game.game_path + lib + " (game path)");
  bool found = ReadTextFileLines(FindFileNoCase(game.game_path + NativePath(lib)), lib_lines);
  if (!found && !game_path_is_program_folder) {
    LogScriptError(game, "Library not found in game path;");
    const std::string app_path = game.program_folder + "/" + lib;
    LogScriptError(game, "Including library " + app_path + " (app path)");
    found = ReadTextFileLines(FindFileNoCase(NativePath(app_path)), lib_lines);
  }
  game.text.lines[static_cast<std::size_t>(line_number)].clear();
  if (!found) {
    LogScriptError(game, "ERROR: Library not found.");
    return IncludeResult::kNotFound;
  }
  return MergeLibrary(game, lib_lines, sections) ? IncludeResult::kMerged
                                                 : IncludeResult::kTooManyLines;
}

std::size_t CountOf(std::string_view text, char c) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), c));
}

}  // namespace

bool ReadTextFileLines(const std::string& path, std::vector<std::string>& lines) {
  std::string bytes;
  if (!ReadWholeFile(path, bytes, kMaxGameFileBytes)) return false;
  lines = SplitLines(DecodeGameText(std::move(bytes)));
  for (std::string& line : lines) {
    if (line.find('\t') != std::string::npos) line = ExpandTabs(line);
  }
  return true;
}

bool RewriteBraces(Game& game) {
  GameText& text = game.text;
  // The loop also reaches the procedures it makes, so braces nested inside a brace block become
  // procedures of their own.
  for (int b = 1; b <= text.BlockCount(); ++b) {
    const int start = text.blocks[static_cast<std::size_t>(b)].start;
    const int end = text.blocks[static_cast<std::size_t>(b)].end;
    if (BeginsWith(text.Line(start), "define text")) continue;
    for (int i = start + 1; i < end; ++i) {
      const std::size_t brace = text.Line(i).find('{');
      if (brace == std::string::npos) continue;
      const std::string line = text.Line(i);  // the line is rewritten below

      const std::string name = "<!intproc" + std::to_string(game.intproc_counter++) + ">";
      std::vector<std::string> body;
      const std::string_view after = std::string_view(line).substr(brace + 1);
      if (!TrimView(after).empty()) body.emplace_back(TrimView(after));
      long depth =
          1 + static_cast<long>(CountOf(after, '{')) - static_cast<long>(CountOf(after, '}'));
      int k = i + 1;
      // The block is taken up to the line that balances the braces, and never past the end of
      // the block that holds it.
      for (; depth > 0 && k < end; ++k) {
        std::string& taken = text.lines[static_cast<std::size_t>(k)];
        depth += static_cast<long>(CountOf(taken, '{')) - static_cast<long>(CountOf(taken, '}'));
        if (depth > 0) {
          body.push_back(taken);
        } else {
          const std::size_t last = taken.rfind('}');
          std::string_view before = TrimView(std::string_view(taken).substr(0, last));
          if (!before.empty()) body.emplace_back(before);
        }
        taken.clear();
      }
      if (depth > 0) {
        LogScriptError(game, "Warning: Missing } for the { in '" + Trim(line) +
                                 "'; the block ends with its 'end define'.");
      }
      text.lines[static_cast<std::size_t>(i)] =
          Trim(std::string_view(line).substr(0, brace)) + " do " + name;

      const int proc_start = text.LineCount() + 1;
      if (!AddLine(text, "define procedure " + name)) return false;
      for (std::string& body_line : body) {
        if (!AddLine(text, std::move(body_line))) return false;
      }
      if (!AddLine(text, "end define")) return false;
      AddBlock(text, proc_start, text.LineCount());
      i = k - 1;
    }
  }
  return true;
}

void JoinElseLines(Game& game) {
  GameText& text = game.text;
  for (int b = 1; b <= text.BlockCount(); ++b) {
    const BlockRecord& block = text.blocks[static_cast<std::size_t>(b)];
    const std::string& first = text.Line(block.start);
    if (!BeginsWith(first, "define room") && !BeginsWith(first, "define procedure")) continue;
    int last_if = 0;
    for (int i = block.start + 1; i < block.end; ++i) {
      std::string& line = text.lines[static_cast<std::size_t>(i)];
      if (BeginsWith(line, "if")) {
        last_if = i;
      } else if (BeginsWith(line, "else") && last_if != 0) {
        std::string& if_line = text.lines[static_cast<std::size_t>(last_if)];
        if_line += ' ';
        if_line += TrimView(line);
        line.clear();
      }
    }
  }
}

void JoinContinuations(Game& game) {
  GameText& text = game.text;
  for (int b = 1; b <= text.BlockCount(); ++b) {
    const int start = text.blocks[static_cast<std::size_t>(b)].start;
    const int end = text.blocks[static_cast<std::size_t>(b)].end;
    // A line ending in "__" takes the next line, without its leading blanks, in place of those
    // two characters. Joining from the last line of a chain upwards gives the first line the
    // whole chain; the same result is built here in one forward pass. The block's last inner
    // line has no next line to take (its "end define" is never joined).
    for (int i = start + 1; i < end - 1; ++i) {
      if (!EndsWith(text.Line(i), "__")) continue;
      int last = i + 1;
      while (last < end - 1 && EndsWith(text.Line(last), "__")) ++last;
      std::string& first = text.lines[static_cast<std::size_t>(i)];
      first.resize(first.size() - 2);
      for (int k = i + 1; k <= last; ++k) {
        std::string& next = text.lines[static_cast<std::size_t>(k)];
        std::string_view piece = next;
        if (k < last) piece.remove_suffix(2);
        first.append(TrimLeftView(piece));
        next.clear();
      }
      i = last;
    }
  }
}

bool ReadGameFile(Game& game, const std::string& path) {
  const std::string extension = LCase(CharRight(path, 4));
  std::vector<std::string> lines;
  if (extension == ".cgw") {
    std::string bytes;
    if (!ReadWholeFile(path, bytes, kMaxGameFileBytes)) {
      LogScriptError(game, "Error: Unable to read the file " + path + ".");
      return false;
    }
    if (!game.keywords.loaded) {
      LogScriptError(game,
                     "Error: Compiled games cannot be opened without the keyword table "
                     "tarve.dat.");
      return false;
    }
    if (!ReadCompiledGame(game, bytes, lines)) return false;
  } else if (extension == ".gwl") {
    if (!ReadTextFileLines(path, lines)) {
      LogScriptError(game, "Error: Unable to read the file " + path + ".");
      return false;
    }
  } else {
    game.host.dialogs.ShowMessage(
        "Unrecognized file extension!\n\nTarve can only read game files with .GWL or .CGW "
        "extensions.",
        "Error", kOkOnly);
    return false;
  }
  if (lines.size() > static_cast<std::size_t>(kMaxGameLines)) {
    ReportTooManyLines(game);
    return false;
  }
  GameText& text = game.text;
  text = GameText();
  text.lines.reserve(lines.size() + 1);
  for (std::string& line : lines) text.lines.push_back(std::move(line));

  // Libraries are merged into the game's own lines only: lines that come from a library are
  // never searched for "!include", so includes do not nest.
  const bool game_path_is_program_folder =
      LCase(game.game_path) == LCase(game.program_folder + "/");
  const int own_lines = text.LineCount();
  AddToSections sections;
  for (int i = 1; i <= own_lines; ++i) {
    if (!BeginsWith(text.Line(i), "!include ")) continue;
    switch (IncludeLibrary(game, i, game_path_is_program_folder, sections)) {
      case IncludeResult::kMerged:
        break;
      case IncludeResult::kNotFound:
        return false;
      case IncludeResult::kTooManyLines:
        ReportTooManyLines(game);
        return false;
    }
  }
  sections.InsertInto(text);

  if (!BuildBlockIndex(game)) return false;
  if (!RewriteBraces(game)) {
    ReportTooManyLines(game);
    return false;
  }
  JoinElseLines(game);
  JoinContinuations(game);

  if (CheckBracketsAndNames(game)) {
    game.host.dialogs.ShowMessage(
        "Errors found in " + path + ": Read logfile (if enabled) for details.",
        "Failed to load game", kOkOnly);
    return false;
  }
  return true;
}

}  // namespace tarve
