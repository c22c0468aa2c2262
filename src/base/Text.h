// UTF-8 text primitives. Game text is held as UTF-8; everything a game can observe as a count or
// a position is in characters (code points), and case rules cover Unicode's simple case
// mappings. The delimiters of the game language are ASCII, so byte positions serve for parsing.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarve {

// Case mapping of whole texts (simple, one-to-one mappings: "Éclair" -> "éclair").
std::string LCase(std::string_view text);
std::string UCase(std::string_view text);
// Equality ignoring case.
bool EqualsNoCase(std::string_view a, std::string_view b);
// True when `text` starts with `prefix`, ignoring case; nothing is trimmed.
bool StartsWithNoCase(std::string_view text, std::string_view prefix);
// Byte position of the first occurrence of `needle` at or after byte `from`, ignoring case;
// npos when absent.
std::size_t FindNoCase(std::string_view text, std::string_view needle, std::size_t from = 0);

// Trimming removes blanks (U+0020) only, the way the game language trims.
std::string_view TrimView(std::string_view text);
std::string Trim(std::string_view text);
std::string_view TrimLeftView(std::string_view text);
std::string_view TrimRightView(std::string_view text);

// Character (code point) counts and character-based cuts. Positions count from 1; a cut that
// reaches outside the text is clipped to it.
std::size_t CharCount(std::string_view text);
std::size_t ByteOffsetOfChar(std::string_view text, std::size_t char_index);  // 0-based index
std::string CharLeft(std::string_view text, std::size_t count);
std::string CharRight(std::string_view text, std::size_t count);
std::string CharMid(std::string_view text, std::size_t start, std::size_t count);
std::string CharMid(std::string_view text, std::size_t start);
// Character position (from 1) of the first occurrence of `needle` at or after character
// `start`; 0 when absent.
std::size_t CharInStr(std::string_view text, std::string_view needle, std::size_t start = 1);
// The longest start of `text` of at most `max_bytes` bytes that ends on a character boundary.
std::string_view LeftBytes(std::string_view text, std::size_t max_bytes);

bool IsValidUtf8(std::string_view bytes);
// The Windows-1252 character of a byte, as UTF-8. Bytes that Windows-1252 leaves undefined map
// to the C1 control of the same number, as the platform's own conversion does.
std::string Windows1252ToUtf8(unsigned char byte);
// The text in Windows-1252, or nothing when it holds a character that code page cannot hold.
std::optional<std::string> Utf8ToWindows1252(std::string_view text);

// Game files: UTF-8 when the bytes are valid UTF-8 (a byte-order mark is skipped), otherwise
// Windows-1252.
std::string DecodeGameText(std::string file_bytes);
// Splits at CR LF, LF or a lone CR. A final line end does not start another line.
std::vector<std::string> SplitLines(std::string_view text);

// Replaces every tab by four blanks.
std::string ExpandTabs(std::string_view line);

}  // namespace tarve
