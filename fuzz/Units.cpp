#include "fuzz/Units.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace korvex {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

char32_t byteAt(std::string_view text, std::size_t at) { return static_cast<unsigned char>(text[at]); }

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// How many bytes a character takes in UTF-8.
std::size_t bytesOf(char32_t character) {
  if (character < 0x80) return 1;
  if (character < 0x800) return 2;
  return character < 0x10000 ? 3 : 4;
}

// The bits of a leading byte that belong to the character, by the length it announces.
constexpr char32_t leadingBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};

std::size_t announcedBytes(char32_t lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xF0 && lead < 0xF8) return 4;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  if (lead >= 0xC0 && lead < 0xE0) return 2;
  return 0;
}

// The character at a place: whole, in its shortest form, and no surrogate.
std::optional<char32_t> characterAt(std::string_view text, std::size_t at) {
  const std::size_t length = announcedBytes(byteAt(text, at));
  if (length == 0 || length > text.size() - at) return std::nullopt;
  char32_t character = byteAt(text, at) & leadingBits[length];
  for (std::size_t next = at + 1; next < at + length; ++next) {
    if (byteAt(text, next) / 0x40 != 2) return std::nullopt;
    character = character * 0x40 + byteAt(text, next) % 0x40;
  }
  const bool isSurrogate = isHighSurrogate(character) || isLowSurrogate(character);
  if (bytesOf(character) != length || isSurrogate || character > 0x10FFFF) return std::nullopt;
  return character;
}

void appendUnits(Units& units, char32_t character) {
  if (character < 0x10000) {
    units += character;
  } else {
    units += 0xD800 + (character - 0x10000) / 0x400;
    units += 0xDC00 + (character - 0x10000) % 0x400;
  }
}

void appendUTF8(std::string& text, char32_t character) {
  constexpr char32_t leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
  const std::size_t length = bytesOf(character);
  std::string reversed;
  for (std::size_t byte = 1; byte < length; ++byte) {
    reversed += static_cast<char>(0x80 + character % 0x40);
    character /= 0x40;
  }
  reversed += static_cast<char>(leads[length] + character);
  text.append(reversed.rbegin(), reversed.rend());
}

}  // namespace

Units unitsOf(std::string_view text) {
  Units units;
  for (std::size_t at = 0; at < text.size();) {
    const std::optional<char32_t> character = characterAt(text, at);
    if (character) {
      appendUnits(units, *character);
    } else {
      units += strayByte + byteAt(text, at);
    }
    at += character ? bytesOf(*character) : 1;
  }
  return units;
}

std::string textOf(const Units& units) {
  std::string text;
  for (std::size_t at = 0; at < units.size(); ++at) {
    const char32_t unit = units[at];
    if (unit >= strayByte) {
      text += static_cast<char>(unit - strayByte);
    } else if (isHighSurrogate(unit) && at + 1 < units.size() && isLowSurrogate(units[at + 1])) {
      appendUTF8(text, 0x10000 + (unit - 0xD800) * 0x400 + (units[++at] - 0xDC00));
    } else {
      appendUTF8(text, isHighSurrogate(unit) || isLowSurrogate(unit) ? replacementCharacter : unit);
    }
  }
  return text;
}

bool isWhollyUTF8(std::string_view text) {
  const Units units = unitsOf(text);
  return std::none_of(units.begin(), units.end(), [](char32_t unit) { return unit >= strayByte; });
}

}  // namespace korvex
