#include "script/CommonCode.h"

#include <utf8proc.h>

#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"

namespace tarve {

namespace {

// Next code point of `text` at byte `pos`, advancing `pos`. An invalid byte stands for itself.
utf8proc_int32_t NextCodePoint(std::string_view text, std::size_t& pos) {
  unsigned char c = static_cast<unsigned char>(text[pos]);
  if (c < 0x80) {
    ++pos;
    return c;
  }
  utf8proc_int32_t cp = 0;
  utf8proc_ssize_t n =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data() + pos),
                       static_cast<utf8proc_ssize_t>(text.size() - pos), &cp);
  if (n <= 0) {
    ++pos;
    return c;
  }
  pos += static_cast<std::size_t>(n);
  return cp;
}

utf8proc_int32_t FoldCase(utf8proc_int32_t cp) {
  if (cp < 0x80) return (cp >= 'A' && cp <= 'Z') ? cp + ('a' - 'A') : cp;
  return utf8proc_tolower(cp);
}

bool HasSubstitutionMarker(std::string_view text) {
  return text.find_first_of("#%~$") != std::string_view::npos;
}

}  // namespace

bool IsEndDefine(std::string_view line) { return TrimView(line) == "end define"; }

bool BeginsWith(std::string_view text, std::string_view prefix) {
  text = TrimLeftView(text);
  std::size_t t = 0;
  std::size_t p = 0;
  while (p < prefix.size()) {
    if (t >= text.size()) return false;
    unsigned char tc = static_cast<unsigned char>(text[t]);
    unsigned char pc = static_cast<unsigned char>(prefix[p]);
    if ((tc | pc) < 0x80) {
      if (tc != pc && FoldCase(tc) != FoldCase(pc)) return false;
      ++t;
      ++p;
      continue;
    }
    if (FoldCase(NextCodePoint(text, t)) != FoldCase(NextCodePoint(prefix, p))) return false;
  }
  return true;
}

std::string GetEverythingAfter(Game& game, std::string_view text, std::string_view prefix) {
  const std::size_t text_chars = CharCount(text);
  const std::size_t prefix_chars = CharCount(prefix);
  if (prefix_chars > text_chars) {
    LogScriptError(game, "Error: Expected text after '" + std::string(prefix) + "' in '" +
                             std::string(text) + "'");
    return std::string();
  }
  return std::string(text.substr(ByteOffsetOfChar(text, prefix_chars)));
}

std::string TextAfterKeyword(std::string_view line, std::string_view keyword) {
  const std::string_view text = TrimLeftView(line);
  return text.size() <= keyword.size() ? std::string() : Trim(text.substr(keyword.size()));
}

bool CutParameter(std::string_view line, std::string_view& parameter) {
  const std::size_t open = line.find('<');
  const std::size_t close = line.find('>');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
    return false;
  }
  parameter = line.substr(open + 1, close - open - 1);
  return true;
}

std::string RetrieveParameter(Game& game, std::string_view line, bool substitute) {
  std::string_view parameter;
  if (!CutParameter(line, parameter)) {
    LogScriptError(game, "Error: Expected a <...> parameter in '" + std::string(line) + "'");
    return std::string();
  }
  if (substitute) return game.substitute_all(game, parameter);
  return std::string(parameter);
}

BlockRange FindBlock(const Game& game, std::string_view type) {
  const GameText& text = game.text;
  auto it = text.first_of_type.find(type);
  if (it == text.first_of_type.end()) return {};
  const BlockRecord& block = text.blocks[static_cast<std::size_t>(it->second)];
  return {block.start, block.end};
}

BlockRange FindBlockByName(Game& game, std::string_view type, std::string_view name) {
  const GameText& text = game.text;
  int found = text.BlockCount() + 1;
  if (auto names = text.first_of_type_and_name.find(type);
      names != text.first_of_type_and_name.end()) {
    if (auto it = names->second.find(name); it != names->second.end()) found = it->second;
  }
  // Names written with substitution markers are compared as their values at this moment, in
  // block order, and only those that stand before the first plain match can win. Each costs a
  // statement: a game of thousands of such names must not make every lookup in a loop free.
  if (auto it = text.substituted_names_of_type.find(type);
      it != text.substituted_names_of_type.end()) {
    for (int index : it->second) {
      if (index > found || !ChargeStatements(game, 1)) break;
      const BlockRecord& block = game.text.blocks[static_cast<std::size_t>(index)];
      if (game.substitute_all(game, block.parameter) == name) {
        found = index;
        break;
      }
    }
  }
  if (found > game.text.BlockCount()) return {};
  const BlockRecord& block = game.text.blocks[static_cast<std::size_t>(found)];
  return {block.start, block.end};
}

std::string FindTagInBlock(Game& game, BlockRange block, std::string_view tag) {
  std::string result;
  ForEachOwnLine(game.text, block, [&](const std::string& line) {
    if (!BeginsWith(line, tag)) return false;
    result = RetrieveParameter(game, line, true);
    return true;
  });
  return result;
}

std::string FindLineWithTagAndParameter(Game& game, BlockRange block, std::string_view tag,
                                        std::string_view parameter) {
  const std::string wanted = UCase(TrimView(parameter));
  std::string result;
  ForEachOwnLine(game.text, block, [&](const std::string& line) {
    if (!BeginsWith(line, tag)) return false;
    if (UCase(TrimView(RetrieveParameter(game, line, true))) != wanted) return false;
    result = Trim(line);
    return true;
  });
  return result;
}

bool AddLine(GameText& text, std::string line) {
  if (text.LineCount() >= kMaxGameLines) return false;
  text.lines.push_back(std::move(line));
  return true;
}

std::string BlockTypeOf(std::string_view define_line) {
  // Characters from the 8th (just after "define ") to the next blank, by fixed position: an
  // indented define line or one with two blanks after "define" yields another word.
  const std::size_t from = ByteOffsetOfChar(define_line, 7);
  if (from >= define_line.size()) return std::string();
  const std::size_t blank = define_line.find(' ', from);
  return std::string(define_line.substr(
      from, blank == std::string_view::npos ? std::string_view::npos : blank - from));
}

void AddBlock(GameText& text, int start, int end) {
  BlockRecord record;
  record.start = start;
  record.end = end;
  const std::string& line = text.Line(start);
  record.type = BlockTypeOf(line);
  std::string_view parameter;
  record.has_parameter = CutParameter(line, parameter);
  record.parameter = std::string(parameter);
  text.blocks.push_back(record);
  const int index = text.BlockCount();
  text.first_of_type.try_emplace(record.type, index);
  if (!record.has_parameter) return;  // such a block has no name that a lookup could match
  if (HasSubstitutionMarker(record.parameter)) {
    text.substituted_names_of_type[record.type].push_back(index);
  } else {
    text.first_of_type_and_name[record.type].try_emplace(record.parameter, index);
  }
}

bool BuildBlockIndex(Game& game) {
  GameText& text = game.text;
  const int count = text.LineCount();
  for (int i = 1; i <= count; ++i) {
    if (!BeginsWith(text.Line(i), "define")) continue;
    int depth = 1;
    int j = i + 1;
    for (; j <= count; ++j) {
      if (BeginsWith(text.Line(j), "define")) {
        ++depth;
      } else if (BeginsWith(text.Line(j), "end define")) {
        if (--depth == 0) break;
      }
    }
    if (j > count) {
      LogScriptError(game, "Error: Block '" + Trim(text.Line(i)) + "' at line " +
                               std::to_string(i) + " has no matching 'end define'.");
      return false;
    }
    AddBlock(text, i, j);
    i = j;
  }
  return true;
}

bool CheckBracketsAndNames(Game& game) {
  const GameText& text = game.text;
  bool failed = false;
  for (int i = 1; i <= text.LineCount(); ++i) {
    const std::string& line = text.Line(i);
    std::size_t opens = 0;
    std::size_t closes = 0;
    for (char c : line) {
      opens += (c == '<');
      closes += (c == '>');
    }
    if (opens > closes) {
      LogScriptError(game, "Expected > in " + line);
      failed = true;
    } else if (opens < closes) {
      LogScriptError(game, "Too many > in " + line);
      failed = true;
    }
  }
  if (failed) return true;

  for (int b = 1; b <= text.BlockCount(); ++b) {
    const std::string& line = text.Line(text.blocks[static_cast<std::size_t>(b)].start);
    const bool has_open = line.find('<') != std::string::npos;
    if (BeginsWith(line, "define game")) {
      if (!has_open) {
        LogScriptError(game, "Fatal error: 'define game' has no parameter - game has no name");
        return true;
      }
    } else if (!BeginsWith(line, "define synonyms") && !has_open) {
      LogScriptError(game, "Fatal error: " + line + " has no parameter");
      failed = true;
    }
  }
  return failed;
}

}  // namespace tarve
