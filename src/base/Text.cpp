// UTF-8 text primitives: case mapping and case-blind comparison through libutf8proc, character
// counts and cuts, and the decoding of game files (UTF-8 or Windows-1252). Most game text is
// ASCII, so every routine handles ASCII bytes inline and decodes only the bytes above 0x7F.
#include "base/Text.h"

#include <utf8proc.h>

#include <array>
#include <cstdint>

namespace tarve {

namespace {

using CodePoint = utf8proc_int32_t;

// A byte that does not start a valid UTF-8 sequence is one character of its own and is kept
// unchanged. It decodes to a value past the end of Unicode, so case mapping leaves it alone and
// it only ever compares equal to the same byte.
constexpr CodePoint kInvalidBase = 0x110000;

constexpr CodePoint kSharpS = 0xDF;

struct DecodedChar {
  CodePoint code;
  std::size_t size;
};

inline bool IsAscii(unsigned char byte) { return byte < 0x80; }

inline unsigned char AsciiLower(unsigned char byte) {
  return (byte >= 'A' && byte <= 'Z') ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

inline unsigned char AsciiUpper(unsigned char byte) {
  return (byte >= 'a' && byte <= 'z') ? static_cast<unsigned char>(byte - ('a' - 'A')) : byte;
}

DecodedChar DecodeAt(std::string_view text, std::size_t pos) {
  const auto byte = static_cast<unsigned char>(text[pos]);
  if (IsAscii(byte)) return {byte, 1};
  CodePoint code = -1;
  const utf8proc_ssize_t size =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data() + pos),
                       static_cast<utf8proc_ssize_t>(text.size() - pos), &code);
  if (size <= 0 || code < 0) return {kInvalidBase + byte, 1};
  return {code, static_cast<std::size_t>(size)};
}

// Byte length of the character that starts at `pos`.
inline std::size_t CharSizeAt(std::string_view text, std::size_t pos) {
  return IsAscii(static_cast<unsigned char>(text[pos])) ? 1 : DecodeAt(text, pos).size;
}

void AppendCodePoint(std::string& out, CodePoint code) {
  if (code < 0x80) {
    out.push_back(static_cast<char>(code));
    return;
  }
  if (code >= kInvalidBase) {
    out.push_back(static_cast<char>(code - kInvalidBase));
    return;
  }
  utf8proc_uint8_t buffer[4];
  const utf8proc_ssize_t size = utf8proc_encode_char(code, buffer);
  out.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(size));
}

inline CodePoint LowerCode(CodePoint code) {
  if (code < 0x80) return AsciiLower(static_cast<unsigned char>(code));
  if (code >= kInvalidBase) return code;
  return utf8proc_tolower(code);
}

bool IsAsciiText(std::string_view text) {
  for (const char c : text) {
    if (!IsAscii(static_cast<unsigned char>(c))) return false;
  }
  return true;
}

// Maps every character of `text` with `map_code`, ASCII letters with `map_ascii`. The ASCII
// stretch at the start is mapped in place byte by byte; decoding starts only at the first byte
// above 0x7F.
template <typename AsciiMap, typename CodeMap>
std::string MapCase(std::string_view text, AsciiMap map_ascii, CodeMap map_code) {
  std::string out(text);
  std::size_t pos = 0;
  for (; pos < out.size(); ++pos) {
    const auto byte = static_cast<unsigned char>(out[pos]);
    if (!IsAscii(byte)) break;
    out[pos] = static_cast<char>(map_ascii(byte));
  }
  if (pos == out.size()) return out;
  out.resize(pos);
  while (pos < text.size()) {
    const auto byte = static_cast<unsigned char>(text[pos]);
    if (IsAscii(byte)) {
      out.push_back(static_cast<char>(map_ascii(byte)));
      ++pos;
      continue;
    }
    const DecodedChar c = DecodeAt(text, pos);
    AppendCodePoint(out, c.code >= kInvalidBase ? c.code : map_code(c.code));
    pos += c.size;
  }
  return out;
}

// Compares `text` from byte `pos` with the whole of `prefix`, ignoring case. Returns the byte
// position in `text` just after the match, or npos when `prefix` does not match there.
std::size_t MatchNoCase(std::string_view text, std::size_t pos, std::string_view prefix) {
  std::size_t p = 0;
  while (p < prefix.size()) {
    if (pos >= text.size()) return std::string_view::npos;
    const auto a = static_cast<unsigned char>(text[pos]);
    const auto b = static_cast<unsigned char>(prefix[p]);
    if (IsAscii(a) && IsAscii(b)) {
      if (AsciiLower(a) != AsciiLower(b)) return std::string_view::npos;
      ++pos;
      ++p;
      continue;
    }
    const DecodedChar ca = DecodeAt(text, pos);
    const DecodedChar cb = DecodeAt(prefix, p);
    if (LowerCode(ca.code) != LowerCode(cb.code)) return std::string_view::npos;
    pos += ca.size;
    p += cb.size;
  }
  return pos;
}

// Byte position reached from byte `pos` after at most `count` characters.
std::size_t AdvanceChars(std::string_view text, std::size_t pos, std::size_t count) {
  while (count > 0 && pos < text.size()) {
    pos += CharSizeAt(text, pos);
    --count;
  }
  return pos;
}

// True when walking characters from the boundary `from` lands exactly on byte `to`.
bool IsCharBoundary(std::string_view text, std::size_t from, std::size_t to) {
  while (from < to) from += CharSizeAt(text, from);
  return from == to;
}

// Windows-1252 characters of the bytes 0x80 to 0x9F. The five bytes the code page leaves
// undefined stand for the C1 control of the same number.
constexpr std::array<char16_t, 32> kWindows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

CodePoint Windows1252Code(unsigned char byte) {
  if (byte >= 0x80 && byte <= 0x9F) return kWindows1252High[byte - 0x80];
  return byte;
}

}  // namespace

std::string LCase(std::string_view text) {
  return MapCase(text, AsciiLower, [](CodePoint code) { return utf8proc_tolower(code); });
}

std::string UCase(std::string_view text) {
  // libutf8proc upper-cases the sharp s to the capital sharp s, which Unicode's simple
  // mappings do not do: the game language keeps the letter as it is.
  return MapCase(text, AsciiUpper,
                 [](CodePoint code) { return code == kSharpS ? code : utf8proc_toupper(code); });
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  // Different byte lengths can still match when a character and its other case differ in
  // length (the Kelvin sign and "k"), so only the full walk decides.
  const std::size_t end = MatchNoCase(a, 0, b);
  return end == a.size();
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return MatchNoCase(text, 0, prefix) != std::string_view::npos;
}

std::size_t FindNoCase(std::string_view text, std::string_view needle, std::size_t from) {
  if (from > text.size()) return std::string_view::npos;
  if (needle.empty()) return from;
  if (IsAsciiText(text) && IsAsciiText(needle)) {
    const unsigned char first = AsciiLower(static_cast<unsigned char>(needle[0]));
    if (needle.size() > text.size()) return std::string_view::npos;
    const std::size_t last = text.size() - needle.size();
    for (std::size_t pos = from; pos <= last; ++pos) {
      if (AsciiLower(static_cast<unsigned char>(text[pos])) != first) continue;
      std::size_t i = 1;
      while (i < needle.size() && AsciiLower(static_cast<unsigned char>(text[pos + i])) ==
                                      AsciiLower(static_cast<unsigned char>(needle[i]))) {
        ++i;
      }
      if (i == needle.size()) return pos;
    }
    return std::string_view::npos;
  }
  for (std::size_t pos = from; pos < text.size(); pos += CharSizeAt(text, pos)) {
    if (MatchNoCase(text, pos, needle) != std::string_view::npos) return pos;
  }
  return std::string_view::npos;
}

// Plain loops: the texts trimmed are mostly short, where a library search costs more.
std::string_view TrimLeftView(std::string_view text) {
  std::size_t first = 0;
  while (first < text.size() && text[first] == ' ') ++first;
  return text.substr(first);
}

std::string_view TrimRightView(std::string_view text) {
  std::size_t end = text.size();
  while (end > 0 && text[end - 1] == ' ') --end;
  return text.substr(0, end);
}

std::string_view TrimView(std::string_view text) { return TrimRightView(TrimLeftView(text)); }

std::string Trim(std::string_view text) { return std::string(TrimView(text)); }

std::size_t CharCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t pos = 0; pos < text.size(); pos += CharSizeAt(text, pos)) ++count;
  return count;
}

std::size_t ByteOffsetOfChar(std::string_view text, std::size_t char_index) {
  return AdvanceChars(text, 0, char_index);
}

std::string_view LeftBytes(std::string_view text, std::size_t max_bytes) {
  if (text.size() <= max_bytes) return text;
  std::size_t cut = max_bytes;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
  return text.substr(0, cut);
}

std::string CharLeft(std::string_view text, std::size_t count) {
  return std::string(text.substr(0, AdvanceChars(text, 0, count)));
}

std::string CharRight(std::string_view text, std::size_t count) {
  const std::size_t total = CharCount(text);
  if (count >= total) return std::string(text);
  return std::string(text.substr(ByteOffsetOfChar(text, total - count)));
}

std::string CharMid(std::string_view text, std::size_t start, std::size_t count) {
  const std::size_t begin = AdvanceChars(text, 0, start == 0 ? 0 : start - 1);
  if (begin >= text.size()) return std::string();
  const std::size_t end = AdvanceChars(text, begin, count);
  return std::string(text.substr(begin, end - begin));
}

std::string CharMid(std::string_view text, std::size_t start) {
  const std::size_t begin = AdvanceChars(text, 0, start == 0 ? 0 : start - 1);
  return std::string(text.substr(begin));
}

std::size_t CharInStr(std::string_view text, std::string_view needle, std::size_t start) {
  if (start < 1) start = 1;
  // Walk to the start character, then search bytes and count the characters passed over. A
  // byte match that starts or ends inside a character (possible only around invalid bytes) is
  // skipped.
  std::size_t pos = 0;
  std::size_t chars_before = 0;
  while (chars_before < start - 1 && pos < text.size()) {
    pos += CharSizeAt(text, pos);
    ++chars_before;
  }
  if (chars_before < start - 1) return 0;  // start lies more than one past the end
  if (needle.empty()) return start;
  std::size_t search_from = pos;
  while (true) {
    const std::size_t found = text.find(needle, search_from);
    if (found == std::string_view::npos) return 0;
    while (pos < found) {
      pos += CharSizeAt(text, pos);
      ++chars_before;
    }
    if (pos == found && IsCharBoundary(text, found, found + needle.size())) {
      return chars_before + 1;
    }
    search_from = found + 1;
  }
}

bool IsValidUtf8(std::string_view bytes) {
  std::size_t pos = 0;
  while (pos < bytes.size()) {
    if (IsAscii(static_cast<unsigned char>(bytes[pos]))) {
      ++pos;
      continue;
    }
    const DecodedChar c = DecodeAt(bytes, pos);
    if (c.code >= kInvalidBase) return false;
    pos += c.size;
  }
  return true;
}

std::string Windows1252ToUtf8(unsigned char byte) {
  std::string out;
  AppendCodePoint(out, Windows1252Code(byte));
  return out;
}

std::optional<std::string> Utf8ToWindows1252(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t pos = 0;
  while (pos < text.size()) {
    const auto byte = static_cast<unsigned char>(text[pos]);
    if (IsAscii(byte)) {
      out.push_back(static_cast<char>(byte));
      ++pos;
      continue;
    }
    const DecodedChar c = DecodeAt(text, pos);
    pos += c.size;
    if (c.code >= 0xA0 && c.code <= 0xFF) {
      out.push_back(static_cast<char>(c.code));
      continue;
    }
    bool found = false;
    for (std::size_t i = 0; i < kWindows1252High.size(); ++i) {
      if (kWindows1252High[i] == c.code) {
        out.push_back(static_cast<char>(0x80 + i));
        found = true;
        break;
      }
    }
    if (!found) return std::nullopt;
  }
  return out;
}

std::string DecodeGameText(std::string file_bytes) {
  // A byte-order mark declares UTF-8; it is dropped whichever way the rest is read.
  constexpr std::string_view kBom = "\xEF\xBB\xBF";
  std::string_view bytes = file_bytes;
  if (bytes.substr(0, kBom.size()) == kBom) bytes.remove_prefix(kBom.size());
  if (IsValidUtf8(bytes)) {
    // Valid UTF-8 is kept as it is, without a copy of the whole file.
    if (bytes.size() != file_bytes.size()) file_bytes.erase(0, kBom.size());
    return file_bytes;
  }
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 8);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (IsAscii(byte)) {
      out.push_back(c);
    } else {
      AppendCodePoint(out, Windows1252Code(byte));
    }
  }
  return out;
}

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  std::size_t pos = 0;
  while (pos < text.size()) {
    const char c = text[pos];
    if (c != '\n' && c != '\r') {
      ++pos;
      continue;
    }
    lines.emplace_back(text.substr(start, pos - start));
    pos += (c == '\r' && pos + 1 < text.size() && text[pos + 1] == '\n') ? 2 : 1;
    start = pos;
  }
  if (start < text.size()) lines.emplace_back(text.substr(start));
  return lines;
}

std::string ExpandTabs(std::string_view line) {
  std::string out;
  out.reserve(line.size());
  for (const char c : line) {
    if (c == '\t') {
      out.append(4, ' ');
    } else {
      out.push_back(c);
    }
  }
  return out;
}

}  // namespace tarve
