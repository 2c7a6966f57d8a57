#include "Tool/VisibleText.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace korvex {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// Characters that are not seen but act on the terminal or on the order of the line.
constexpr Range invisible[] = {
    {0x00, 0x1F},      // C0 controls
    {0x7F, 0x9F},      // delete and C1 controls
    {0x061C, 0x061C},  // Arabic letter mark
    {0x200E, 0x200F},  // left-to-right and right-to-left mark
    {0x2028, 0x202E},  // line and paragraph separator, direction embeddings and overrides
    {0x2066, 0x2069},  // direction isolates
    {0xFEFF, 0xFEFF},  // byte order mark
};

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

bool isInvisible(char32_t character) {
  return std::any_of(std::begin(invisible), std::end(invisible),
                     [character](const Range& range) { return range.first <= character && character <= range.last; });
}

// What the lead byte of a sequence says about it.
struct Sequence {
  std::size_t length;
  unsigned char leadMask;
  unsigned char lead;
  char32_t smallest;
};
constexpr Sequence sequences[] = {
    {1, 0x80, 0x00, 0x00}, {2, 0xE0, 0xC0, 0x80}, {3, 0xF0, 0xE0, 0x800}, {4, 0xF8, 0xF0, 0x10000}};

bool isScalar(char32_t value) { return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF); }

// The code point that the bytes are; absent when they are not UTF-8.
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
      return character < 0x80 ? "\\x" + hexadecimal(character, 2) : "\\u" + hexadecimal(character, 4);
  }
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
  } else if (isInvisible(*value)) {
    text += escaped(*value);
  } else {
    text += character;
  }
}

}  // namespace

std::string_view firstCharacter(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && isContinuation(text[length])) ++length;
  return text.substr(0, length);
}

std::string_view withoutCharacters(std::string_view text, std::size_t count) {
  std::size_t offset = 0;
  for (; offset < text.size(); ++offset) {
    if (offset > 0 && isContinuation(text[offset])) continue;
    if (count-- == 0) break;
  }
  return text.substr(offset);
}

std::size_t startOfCharacterBefore(std::string_view text, std::size_t end) {
  std::size_t start = end - 1;
  while (start > 0 && isContinuation(text[start])) --start;
  return start;
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

}  // namespace korvex
