#include "terminal/ScreenText.h"

#include <utf8proc.h>

namespace tarve {

namespace {

// The length of the UTF-8 sequence that starts with `lead` (1 for a stray byte).
std::size_t SequenceLength(unsigned char lead) {
  if (lead >= 0xF0) return 4;
  if (lead >= 0xE0) return 3;
  if (lead >= 0xC0) return 2;
  return 1;
}

// Columns a character takes: wide East Asian characters two, combining marks none.
int CharWidth(std::string_view character) {
  utf8proc_int32_t code = 0;
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(character.data());
  if (utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(character.size()), &code) < 0) {
    return 1;
  }
  const int width = utf8proc_charwidth(code);
  return width < 0 ? 0 : width;
}

// Where the style sequence that starts at `at` ends.
std::size_t StyleEnd(std::string_view text, std::size_t at) {
  const std::size_t m = text.find('m', at);
  return m == std::string_view::npos ? text.size() : m + 1;
}

}  // namespace

std::string PrintableText(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  const std::size_t size = text.size();
  auto byte = [&](std::size_t i) { return i < size ? static_cast<unsigned char>(text[i]) : 0; };
  // The character after a control that opens a sequence, in 7-bit form ('[' for CSI), or 0.
  auto introducer = [&](std::size_t i, std::size_t& length) -> unsigned char {
    if (byte(i) == 0x1B) {
      length = 2;
      return byte(i + 1);
    }
    length = 2;  // U+0080 to U+009F stand for ESC followed by 0x40 to 0x5F
    return static_cast<unsigned char>(byte(i + 1) - 0x40);
  };
  for (std::size_t i = 0; i < size;) {
    const unsigned char c = byte(i);
    const bool c1 = c == 0xC2 && byte(i + 1) >= 0x80 && byte(i + 1) <= 0x9F;
    if (c == '\n') {
      result.push_back('\n');
      ++i;
    } else if (c == '\t') {
      result.push_back(' ');
      ++i;
    } else if (c == 0x1B || c1) {
      // A whole escape sequence goes, not only its first character: a title, a screen clear, a
      // clipboard write must not leave their text behind either.
      std::size_t length = 0;
      const unsigned char kind = introducer(i, length);
      i += length;
      if (kind == '[') {
        while (i < size && byte(i) >= 0x20 && byte(i) < 0x40) ++i;  // parameters, intermediates
        if (i < size && byte(i) >= 0x40 && byte(i) <= 0x7E) ++i;    // the final character
      } else if (kind == ']' || kind == 'P' || kind == '_' || kind == '^' || kind == 'X') {
        // A string, ended by BEL or the string terminator (ESC \\ or U+009C).
        while (i < size && byte(i) != 0x07 && byte(i) != 0x1B &&
               !(byte(i) == 0xC2 && byte(i + 1) == 0x9C)) {
          ++i;
        }
        if (byte(i) == 0x07)
          ++i;
        else if (byte(i) == 0x1B && byte(i + 1) == '\\')
          i += 2;
        else if (byte(i) == 0xC2)
          i += 2;
      } else if (c == 0x1B && kind < 0x20) {
        i -= 1;  // ESC before a control character: only the ESC goes
      }
    } else if (c < 0x20 || c == 0x7F) {
      ++i;
    } else {
      result.push_back(static_cast<char>(c));
      ++i;
    }
  }
  return result;
}

void LineWrapper::Put(std::string_view text, std::string& out) {
  if (width_ <= 0) {
    out.append(text);
    return;
  }
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    if (c == '\n') {
      FlushWord(out);
      spaces_ = 0;  // blanks at the end of a line are not written
      out.push_back('\n');
      column_ = 0;
      ++i;
    } else if (c == ' ') {
      FlushWord(out);
      ++spaces_;
      ++i;
    } else if (c == '\x1b') {
      // A style sequence of the player's own: ESC [ parameters m.
      const std::size_t end = StyleEnd(text, i);
      word_.append(text.substr(i, end - i));
      i = end;
    } else {
      const std::size_t length =
          std::min(SequenceLength(static_cast<unsigned char>(c)), text.size() - i);
      const std::string_view character = text.substr(i, length);
      word_.append(character);
      word_width_ += CharWidth(character);
      i += length;
    }
  }
}

void LineWrapper::FlushWord(std::string& out) {
  if (word_.empty()) return;
  if (column_ > 0 && column_ + spaces_ + word_width_ > width_) {
    out.push_back('\n');
    column_ = 0;
    spaces_ = 0;
  }
  if (column_ + spaces_ > width_) spaces_ = width_ - column_;
  out.append(static_cast<std::size_t>(spaces_), ' ');
  column_ += spaces_;
  spaces_ = 0;
  if (column_ + word_width_ <= width_) {
    out.append(word_);
    column_ += word_width_;
  } else {
    // A word longer than a whole line can only be cut.
    for (std::size_t i = 0; i < word_.size();) {
      const std::size_t length =
          word_[i] == '\x1b'
              ? StyleEnd(word_, i) - i
              : std::min(SequenceLength(static_cast<unsigned char>(word_[i])), word_.size() - i);
      const std::string_view character = std::string_view(word_).substr(i, length);
      const int width = word_[i] == '\x1b' ? 0 : CharWidth(character);
      if (column_ + width > width_) {
        out.push_back('\n');
        column_ = 0;
      }
      out.append(character);
      column_ += width;
      i += length;
    }
  }
  word_.clear();
  word_width_ = 0;
}

void LineWrapper::Flush(std::string& out) {
  if (width_ <= 0) return;
  FlushWord(out);
  if (spaces_ > 0 && column_ + spaces_ <= width_) {
    out.append(static_cast<std::size_t>(spaces_), ' ');
    column_ += spaces_;
  }
  spaces_ = 0;
}

}  // namespace tarve
