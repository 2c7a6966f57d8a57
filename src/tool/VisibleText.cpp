#include "tool/VisibleText.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "platform/Strings.h"

namespace korvex {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// Invisible characters that affect the terminal or the direction of the line.
constexpr Range invisible[] = {
    {0x00, 0x1F},        // C0 controls
    {0x7F, 0x9F},        // delete and C1 controls
    {0x00AD, 0x00AD},    // soft hyphen
    {0x061C, 0x061C},    // Arabic letter mark
    {0x180E, 0x180E},    // Mongolian vowel separator
    {0x200B, 0x200B},    // zero-width space; the joiners next to it are part of words and emoji
    {0x200E, 0x200F},    // left-to-right and right-to-left mark
    {0x2028, 0x202E},    // line and paragraph separator, direction embeddings and overrides
    {0x2060, 0x2064},    // word joiner, invisible operators
    {0x2066, 0x2069},    // direction isolates
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xE0001, 0xE007F},  // tags
};

constexpr Range withoutWidth[] = {
    {0x0300, 0x036F},    // combining diacritical marks
    {0x1AB0, 0x1AFF},    // combining diacritical marks, extended
    {0x1DC0, 0x1DFF},    // combining diacritical marks, supplement
    {0x200C, 0x200D},    // zero-width joiners
    {0x20D0, 0x20FF},    // combining marks for symbols
    {0xFE00, 0xFE0F},    // variation selectors
    {0xFE20, 0xFE2F},    // combining half marks
    {0xE0100, 0xE01EF},  // variation selectors, supplement
};

constexpr Range wide[] = {
    {0x1100, 0x115F},    // leading Hangul jamo
    {0x231A, 0x231B},    // watch, hourglass
    {0x23E9, 0x23EC},    // double triangles
    {0x2614, 0x2615},    // umbrella, hot beverage
    {0x26A1, 0x26A1},    // lightning
    {0x2705, 0x2705},    // check mark
    {0x274C, 0x274C},    // cross mark
    {0x2753, 0x2757},    // question and exclamation marks
    {0x2B50, 0x2B50},    // star
    {0x2E80, 0x303E},    // CJK radicals, symbols and punctuation
    {0x3041, 0x4DBF},    // kana, Hangul letters, CJK compatibility and extension A
    {0x4E00, 0xA4CF},    // CJK ideographs, Yi
    {0xA960, 0xA97F},    // Hangul jamo, extended
    {0xAC00, 0xD7A3},    // Hangul syllables
    {0xF900, 0xFAFF},    // CJK compatibility ideographs
    {0xFE30, 0xFE6F},    // CJK compatibility and small forms
    {0xFF01, 0xFF60},    // full-width forms
    {0xFFE0, 0xFFE6},    // full-width signs
    {0x1F1E6, 0x1F1FF},  // regional indicators
    {0x1F300, 0x1F64F},  // pictographs, emoticons
    {0x1F680, 0x1F6FF},  // transport
    {0x1F7E0, 0x1F7EB},  // coloured circles and squares
    {0x1F900, 0x1FAFF},  // supplementary pictographs
    {0x20000, 0x3FFFD},  // CJK ideographs, extensions
};

template <std::size_t count>
bool isAmong(const Range (&ranges)[count], char32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [character](const Range& range) { return range.first <= character && character <= range.last; });
}

// The data of a sequence that its lead byte gives.
struct Sequence {
  std::size_t length;
  unsigned char leadMask;
  unsigned char lead;
  char32_t smallest;
};
constexpr Sequence sequences[] = {
    {1, 0x80, 0x00, 0x00}, {2, 0xE0, 0xC0, 0x80}, {3, 0xF0, 0xE0, 0x800}, {4, 0xF8, 0xF0, 0x10000}};

bool isScalar(char32_t value) { return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF); }

// The code point of the bytes; absent if they are not UTF-8.
std::optional<char32_t> decoded(std::string_view bytes) {
  const auto lead = static_cast<unsigned char>(bytes.front());
  for (const Sequence& sequence : sequences) {
    if (bytes.size() != sequence.length || (lead & sequence.leadMask) != sequence.lead) continue;
    char32_t value = lead & ~static_cast<unsigned>(sequence.leadMask) & 0xFFU;
    for (const char byte : bytes.substr(1)) value = value << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
    if (value >= sequence.smallest && isScalar(value)) return value;
  }
  return std::nullopt;
}

std::string hexadecimal(std::uint32_t value, int digits) {
  std::string text;
  for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) text += "0123456789abcdef"[value >> shift & 0xFU];
  return text;
}

std::string escaped(char32_t character) {
  switch (character) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      if (character < 0x80) return "\\x" + hexadecimal(character, 2);
      return character <= 0xFFFF ? "\\u" + hexadecimal(character, 4) : "\\U" + hexadecimal(character, 8);
  }
}

// In UTF-16, as JSON escapes a character.
std::string escapedInJson(char32_t character) {
  if (character <= 0xFFFF) return "\\u" + hexadecimal(character, 4);
  const char32_t rest = character - 0x10000;
  return "\\u" + hexadecimal(0xD800 + (rest >> 10U), 4) + "\\u" + hexadecimal(0xDC00 + (rest & 0x3FFU), 4);
}

std::string escapedBytes(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) text += "\\x" + hexadecimal(static_cast<unsigned char>(byte), 2);
  return text;
}

void appendVisible(std::string& text, std::string_view character) {
  const std::optional<char32_t> value = decoded(character);
  if (!value) {
    text += escapedBytes(character);
  } else if (isAmong(invisible, *value)) {
    text += escaped(*value);
  } else {
    text += character;
  }
}

}  // namespace

std::string_view firstCharacter(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && continuesCharacter(text[length])) ++length;
  return text.substr(0, length);
}

std::string_view withoutCharacters(std::string_view text, std::size_t count) {
  std::size_t offset = 0;
  for (; offset < text.size(); ++offset) {
    if (offset > 0 && continuesCharacter(text[offset])) continue;
    if (count-- == 0) break;
  }
  return text.substr(offset);
}

std::size_t startOfCharacterBefore(std::string_view text, std::size_t end) {
  std::size_t start = end - 1;
  while (start > 0 && continuesCharacter(text[start])) --start;
  return start;
}

std::size_t columnsOf(std::string_view character) {
  const std::optional<char32_t> value = decoded(character);
  if (!value) return 1;
  if (isAmong(withoutWidth, *value)) return 0;
  return isAmong(wide, *value) ? 2 : 1;
}

std::string visibleText(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::string_view character = firstCharacter(text);
    appendVisible(result, character);
    text.remove_prefix(character.size());
  }
  return result;
}

std::string visibleLines(std::string_view text) {
  std::string result;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    result += visibleText(text.substr(0, end)) + '\n';
    text.remove_prefix(end + 1);
  }
  return result + visibleText(text);
}

std::string visibleJson(std::string_view json) {
  std::string result;
  result.reserve(json.size());
  while (!json.empty()) {
    const std::string_view character = firstCharacter(json);
    const std::optional<char32_t> value = character.size() > 1 ? decoded(character) : std::nullopt;
    if (value && isAmong(invisible, *value)) {
      result += escapedInJson(*value);
    } else {
      result += character;
    }
    json.remove_prefix(character.size());
  }
  return result;
}

}  // namespace korvex
