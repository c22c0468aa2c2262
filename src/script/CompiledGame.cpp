#include "script/CompiledGame.h"

#include <optional>

#include "base/Text.h"
#include "game/Game.h"
#include "script/CommonCode.h"

namespace tarve {

namespace {

// Bytes with a meaning of their own inside the token stream.
constexpr unsigned char kQuoteEnd = 0;        // ends a quoted parameter; separates text lines
constexpr unsigned char kTextBlockEnd = 253;  // ends the lines of a text block
constexpr unsigned char kLiteralEnd = 254;    // ends a literal word

void AppendWindows1252(std::string& out, unsigned char code) {
  if (code < 0x80) {
    out.push_back(static_cast<char>(code));
  } else {
    out += Windows1252ToUtf8(code);
  }
}

bool IsTextBlockStart(std::string_view line) { return BeginsWith(line, "define text"); }

}  // namespace

bool ReadCompiledGame(Game& game, std::string_view bytes, std::vector<std::string>& lines) {
  if (bytes.substr(0, kCompiledMagic.size()) != kCompiledMagic) {
    game.host.dialogs.ShowMessage("Invalid or corrupted file!", "Tarve", kOkOnly);
    return false;
  }
  const KeywordTable& table = game.keywords;
  Host& host = game.host;
  const std::string caption = "Please wait, loading game...";
  host.dialogs.ShowProgress(caption, 0);
  int shown_percent = 0;

  std::size_t pos = 8;  // the eighth byte is not read
  std::string line;
  // A game never holds more lines than the limit, so a damaged file cannot make the reader
  // build an enormous list: one line more than the limit is enough for the caller to refuse it.
  while (pos < bytes.size() && lines.size() <= static_cast<std::size_t>(kMaxGameLines)) {
    const int percent = static_cast<int>((pos - 8) * 100 / bytes.size());
    if (percent != shown_percent) {
      shown_percent = percent;
      host.dialogs.ShowProgress(caption, percent);
    }
    line.clear();
    bool finished = false;
    while (pos < bytes.size() && !finished) {
      const std::string& entry = table.entries[static_cast<unsigned char>(bytes[pos++])];
      if (entry == kEndOfLineEntry) {
        finished = true;
      } else if (entry == kQuoteEntry) {
        line.push_back('<');
        while (pos < bytes.size() && static_cast<unsigned char>(bytes[pos]) != kQuoteEnd) {
          AppendWindows1252(line, static_cast<unsigned char>(bytes[pos++]) ^ 0xFF);
        }
        ++pos;
        line += "> ";
      } else if (entry == kUnknownEntry) {
        while (pos < bytes.size() && static_cast<unsigned char>(bytes[pos]) != kLiteralEnd) {
          AppendWindows1252(line, static_cast<unsigned char>(bytes[pos++]));
        }
        ++pos;
        line.push_back(' ');
      } else if (entry.empty() || entry[0] != '!') {
        line += entry;
        line.push_back(' ');
      }
    }
    lines.push_back(Trim(line));
    if (!IsTextBlockStart(lines.back())) continue;

    // The text block's own lines follow, unchanged, up to the end marker; token reading goes
    // on at the marker itself.
    std::size_t end = bytes.find(static_cast<char>(kTextBlockEnd), pos);
    if (end == std::string_view::npos) end = bytes.size();
    if (end > pos) {
      std::string text_line;
      for (std::size_t i = pos; i <= end; ++i) {
        if (i == end || static_cast<unsigned char>(bytes[i]) == kQuoteEnd) {
          lines.push_back(std::move(text_line));
          text_line.clear();
        } else {
          AppendWindows1252(text_line, static_cast<unsigned char>(bytes[i]) ^ 0xFF);
        }
      }
    }
    pos = end;
  }
  host.dialogs.CloseProgress();
  return true;
}

namespace {

class Writer {
 public:
  Writer(const KeywordTable& table, std::vector<std::string>& problems)
      : table_(table), problems_(problems) {}

  bool Ready() {
    end_of_line_ = table_.CodeOf(kEndOfLineEntry);
    quote_ = table_.CodeOf(kQuoteEntry);
    literal_ = table_.CodeOf(kUnknownEntry);
    if (end_of_line_ < 0 || quote_ < 0 || literal_ < 0) {
      problems_.push_back("Error: The keyword table lacks the !cr, !quote or !unknown entry.");
      return false;
    }
    return true;
  }

  // One game line as tokens. The reader joins tokens with single blanks and trims the line;
  // when that would not give back the trimmed line exactly, the line is stored as one literal.
  void Line(std::string_view raw, int number) {
    const std::string_view line = TrimView(raw);
    line_failed_ = false;
    if (!Encode(line, number)) {
      out_.push_back(static_cast<char>(end_of_line_));
      return;
    }
    std::string tokens;
    std::string rebuilt;
    bool ok = true;
    std::size_t pos = 0;
    while (pos < line.size() && ok) {
      if (line[pos] == '<' && line.find('>', pos) != std::string_view::npos) {
        const std::size_t close = line.find('>', pos);
        ok = Quoted(tokens, line.substr(pos + 1, close - pos - 1), number);
        rebuilt += '<';
        rebuilt += line.substr(pos + 1, close - pos - 1);
        rebuilt += "> ";
        pos = close + 1;
      } else {
        std::size_t end = line.find(' ', pos);
        if (end == std::string_view::npos) end = line.size();
        const std::string word(line.substr(pos, end - pos));
        const int code = word.empty() || word[0] == '!' ? -1 : table_.CodeOf(word);
        if (code >= 0) {
          tokens.push_back(static_cast<char>(code));
        } else {
          ok = Literal(tokens, word, number);
        }
        rebuilt += word + " ";
        pos = end;
      }
      if (pos < line.size()) {
        if (line[pos] != ' ') ok = false;
        ++pos;
      }
    }
    if (ok && TrimView(rebuilt) == line) {
      out_ += tokens;
    } else if (!line.empty() && !line_failed_) {
      std::string whole;
      if (Literal(whole, line, number)) out_ += whole;
    }
    out_.push_back(static_cast<char>(end_of_line_));
  }

  void TextLines(const std::vector<std::string>& lines, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i) {
      if (i > from) out_.push_back(static_cast<char>(kQuoteEnd));
      std::optional<std::string> encoded = Encode(lines[i], static_cast<int>(i) + 1);
      if (!encoded) continue;
      for (char c : *encoded) {
        const auto stored = static_cast<unsigned char>(static_cast<unsigned char>(c) ^ 0xFF);
        if (stored == kQuoteEnd || stored == kTextBlockEnd) {
          Problem(static_cast<int>(i) + 1, c);
          continue;
        }
        out_.push_back(static_cast<char>(stored));
      }
    }
    out_.push_back(static_cast<char>(kTextBlockEnd));
  }

  std::string& out() { return out_; }

 private:
  std::optional<std::string> Encode(std::string_view text, int number) {
    std::optional<std::string> encoded = Utf8ToWindows1252(text);
    if (!encoded) {
      problems_.push_back(
          "Error: Line " + std::to_string(number) +
          " holds a character that a compiled game cannot store: " + std::string(text));
    }
    return encoded;
  }

  void Problem(int number, char byte) {
    line_failed_ = true;
    problems_.push_back("Error: Line " + std::to_string(number) + " holds the character '" +
                        Windows1252ToUtf8(static_cast<unsigned char>(byte)) +
                        "', which a compiled game cannot store there.");
  }

  bool Quoted(std::string& tokens, std::string_view text, int number) {
    std::optional<std::string> encoded = Encode(text, number);
    if (!encoded) return false;
    tokens.push_back(static_cast<char>(quote_));
    for (char c : *encoded) {
      const auto stored = static_cast<unsigned char>(static_cast<unsigned char>(c) ^ 0xFF);
      if (stored == kQuoteEnd) {
        Problem(number, c);
        return false;
      }
      tokens.push_back(static_cast<char>(stored));
    }
    tokens.push_back(static_cast<char>(kQuoteEnd));
    return true;
  }

  bool Literal(std::string& tokens, std::string_view text, int number) {
    std::optional<std::string> encoded = Encode(text, number);
    if (!encoded) return false;
    for (char c : *encoded) {
      if (static_cast<unsigned char>(c) == kLiteralEnd) {
        Problem(number, c);
        return false;
      }
    }
    tokens.push_back(static_cast<char>(literal_));
    tokens += *encoded;
    tokens.push_back(static_cast<char>(kLiteralEnd));
    return true;
  }

  const KeywordTable& table_;
  std::vector<std::string>& problems_;
  std::string out_;
  bool line_failed_ = false;
  int end_of_line_ = -1;
  int quote_ = -1;
  int literal_ = -1;
};

}  // namespace

std::string CompileGame(const KeywordTable& table, const std::vector<std::string>& lines,
                        std::vector<std::string>& problems) {
  Writer writer(table, problems);
  if (!writer.Ready()) return std::string();
  writer.out() = std::string(kCompiledMagic) + '\0';
  for (std::size_t i = 0; i < lines.size(); ++i) {
    writer.Line(lines[i], static_cast<int>(i) + 1);
    if (!IsTextBlockStart(TrimView(lines[i]))) continue;
    std::size_t end = i + 1;
    while (end < lines.size() && !BeginsWith(lines[end], "end define")) ++end;
    writer.TextLines(lines, i + 1, end);
    i = end - 1;
  }
  return std::move(writer.out());
}

}  // namespace tarve
