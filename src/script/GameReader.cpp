#include "script/GameReader.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>

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

// How much a text raises the depth of brace blocks: its "{" less its "}".
long BraceBalance(std::string_view text) {
  return static_cast<long>(std::count(text.begin(), text.end(), '{')) -
         static_cast<long>(std::count(text.begin(), text.end(), '}'));
}

// The brace balance of every line, in a tree of sums and least running sums, so that the line
// that closes a brace block is found without walking every line after the brace: a brace left
// open would otherwise walk the rest of the game once for every block.
class BraceBalances {
 public:
  explicit BraceBalances(const GameText& text) {
    while (leaves_ <= static_cast<std::size_t>(kMaxGameLines)) leaves_ *= 2;
    sum_.assign(2 * leaves_, 0);
    least_.assign(2 * leaves_, 0);
    for (int i = 1; i <= text.LineCount(); ++i) {
      const std::size_t leaf = leaves_ + static_cast<std::size_t>(i);
      sum_[leaf] = least_[leaf] = BraceBalance(text.Line(i));
    }
    for (std::size_t n = leaves_ - 1; n >= 1; --n) Combine(n);
  }

  // Line `line` now reads `text`.
  void Update(int line, std::string_view text) { Set(line, BraceBalance(text)); }

  // Line `line` now has the brace balance `balance`.
  void Set(int line, long balance) {
    std::size_t n = leaves_ + static_cast<std::size_t>(line);
    sum_[n] = least_[n] = balance;
    for (n /= 2; n >= 1; n /= 2) Combine(n);
  }

  long Balance(int line) const { return sum_[leaves_ + static_cast<std::size_t>(line)]; }

  // The first line from `from` on after which `depth`, changed by every line in turn, is no
  // longer above 0; 0 when no line up to the last one brings it there.
  int Closing(int from, long depth) const {
    // The nodes that cover the lines from `from` to the end, left to right.
    std::vector<std::size_t> nodes;
    std::vector<std::size_t> right;
    std::size_t l = leaves_ + static_cast<std::size_t>(from);
    std::size_t r = 2 * leaves_;
    while (l < r) {
      if (l & 1) nodes.push_back(l++);
      if (r & 1) right.push_back(--r);
      l /= 2;
      r /= 2;
    }
    nodes.insert(nodes.end(), right.rbegin(), right.rend());
    for (std::size_t n : nodes) {
      if (depth + least_[n] > 0) {
        depth += sum_[n];
        continue;
      }
      while (n < leaves_) {
        const std::size_t left = 2 * n;
        if (depth + least_[left] <= 0) {
          n = left;
        } else {
          depth += sum_[left];
          n = left + 1;
        }
      }
      return static_cast<int>(n - leaves_);
    }
    return 0;
  }

 private:
  void Combine(std::size_t n) {
    sum_[n] = sum_[2 * n] + sum_[2 * n + 1];
    least_[n] = std::min(least_[2 * n], sum_[2 * n] + least_[2 * n + 1]);
  }

  std::size_t leaves_ = 1;  // a power of two above the highest line number
  std::vector<long> sum_;
  std::vector<long> least_;
};

// The first line of a brace block's procedure while it still holds a "{": the rest of the line
// it was cut from, not a copy. Each "{" of a line of many would otherwise copy (and count the
// braces of) everything after it, which takes time in the square of the line's length.
struct PendingLine {
  std::shared_ptr<const std::string> source;
  std::size_t offset = 0;  // the line reads TrimView(source->substr(offset))
  long balance = 0;        // the brace balance of that text
};

// The closing line of a brace block, cut before its last "}" and trimmed where it stands, so
// that a long closing line shared by many nested blocks is not copied for each.
void CutBeforeLastBrace(std::string& line, std::size_t last) {
  line.resize(last);
  while (!line.empty() && line.back() == ' ') line.pop_back();
  const std::size_t first = line.find_first_not_of(' ');
  line.erase(0, first == std::string::npos ? line.size() : first);
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
  std::optional<BraceBalances> balances;         // made at the first brace
  std::unordered_map<int, PendingLine> pending;  // by line number
  const auto materialize = [&](int line) {
    const auto it = pending.find(line);
    if (it == pending.end()) return;
    text.lines[static_cast<std::size_t>(line)] =
        Trim(std::string_view(*it->second.source).substr(it->second.offset));
    pending.erase(it);
  };
  const auto refuse = [&] {
    while (!pending.empty()) materialize(pending.begin()->first);
    return false;
  };
  // The loop also reaches the procedures it makes, so braces nested inside a brace block become
  // procedures of their own.
  for (int b = 1; b <= text.BlockCount(); ++b) {
    const int start = text.blocks[static_cast<std::size_t>(b)].start;
    const int end = text.blocks[static_cast<std::size_t>(b)].end;
    if (BeginsWith(text.Line(start), "define text")) continue;
    for (int i = start + 1; i < end; ++i) {
      // The line being rewritten, held apart from the game's lines, with its brace balance.
      std::shared_ptr<const std::string> source;
      std::size_t offset = 0;
      long line_balance = 0;
      if (const auto it = pending.find(i); it != pending.end()) {
        source = std::move(it->second.source);
        offset = it->second.offset;
        line_balance = it->second.balance;
        pending.erase(it);
      } else {
        if (text.Line(i).find('{') == std::string::npos) continue;
        if (!balances) balances.emplace(text);
        line_balance = balances->Balance(i);
        source = std::make_shared<const std::string>(std::move(text.lines[i]));
      }
      const std::string_view line = std::string_view(*source).substr(offset);
      const std::size_t brace = line.find('{');

      const std::string name = "<!intproc" + std::to_string(game.intproc_counter++) + ">";
      std::vector<std::string> body;
      std::vector<long> body_balances;
      std::optional<PendingLine> first_pending;
      const std::string_view after = line.substr(brace + 1);
      const long after_balance = line_balance - BraceBalance(line.substr(0, brace + 1));
      const std::string_view first = TrimView(after);
      if (first.find('{') != std::string_view::npos) {
        first_pending = PendingLine{source, offset + brace + 1, after_balance};
        body.emplace_back();
        body_balances.push_back(after_balance);
      } else if (!first.empty()) {
        body.emplace_back(first);
        body_balances.push_back(after_balance);
      }
      const long depth = 1 + after_balance;
      // The block takes the following lines up to the one that brings the depth to 0, even when
      // that line stands after the end define of the block that holds it. A brace that no line
      // up to the last one closes ends with its block instead.
      const int closing = depth > 0 ? balances->Closing(i + 1, depth) : i;
      const int last_taken = closing == 0 ? end - 1 : closing;
      for (int k = i + 1; k <= last_taken; ++k) {
        materialize(k);
        std::string& taken = text.lines[static_cast<std::size_t>(k)];
        long balance = balances->Balance(k);
        if (k == closing) {
          const std::size_t last = taken.rfind('}');
          balance -= BraceBalance(std::string_view(taken).substr(last));
          CutBeforeLastBrace(taken, last);
        }
        if (k != closing || !taken.empty()) {
          body.push_back(std::move(taken));
          body_balances.push_back(balance);
        }
        taken.clear();
        balances->Set(k, 0);
      }
      if (closing == 0) {
        LogScriptError(game, "Warning: Missing } for the { in '" + QuotedForLog(line) +
                                 "'; the block ends with its 'end define'.");
      }
      text.lines[static_cast<std::size_t>(i)] = Trim(line.substr(0, brace)) + " do " + name;
      balances->Update(i, text.Line(i));

      const int proc_start = text.LineCount() + 1;
      if (!AddLine(text, "define procedure " + name)) return refuse();
      for (std::size_t n = 0; n < body.size(); ++n) {
        if (!AddLine(text, std::move(body[n]))) return refuse();
        if (n == 0 && first_pending) pending.emplace(text.LineCount(), std::move(*first_pending));
        balances->Set(text.LineCount(), body_balances[n]);
      }
      if (!AddLine(text, "end define")) return refuse();
      AddBlock(text, proc_start, text.LineCount());
      i = last_taken;
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
    // two characters, and that line is emptied; the block's last inner line takes its "end
    // define" line so (the block keeps its range). Joining from the last line of a chain upwards
    // gives the first line the whole chain; the same result is built here in one forward pass.
    for (int i = start + 1; i < end; ++i) {
      if (!EndsWith(text.Line(i), "__")) continue;
      int last = i + 1;
      while (last < end && EndsWith(text.Line(last), "__")) ++last;
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
