#include "platform/Strings.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace korvex {

namespace {

// Texts begin and end with long indentation, so the test of a character must be inlined; find_first_not_of does not
// inline it.
template <typename Unwanted>
std::string_view trimmedOf(std::string_view text, Unwanted unwanted) {
  while (!text.empty() && unwanted(text.back())) text.remove_suffix(1);
  while (!text.empty() && unwanted(text.front())) text.remove_prefix(1);
  return text;
}

constexpr auto isSpace = [](char character) { return character == ' '; };
constexpr auto isSpaceNewLineTab = [](char character) {
  return character == ' ' || character == '\n' || character == '\t';
};

// The bytes that may follow a lead byte. The range of the second byte excludes overlong forms, surrogates and code
// points beyond U+10FFFF (RFC 3629, section 4).
struct UTF8Form {
  unsigned char firstLead, lastLead;
  unsigned char firstSecond, lastSecond;
  std::size_t length;
};

constexpr std::array<UTF8Form, 8> longForms = {{
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
}};

bool isBetween(char byte, unsigned char first, unsigned char last) {
  const auto value = static_cast<unsigned char>(byte);
  return value >= first && value <= last;
}

bool isASCII(char byte) { return isBetween(byte, 0x00, 0x7F); }

bool fitsForm(std::string_view text, std::size_t at, const UTF8Form& form) {
  if (!isBetween(text[at], form.firstLead, form.lastLead) || form.length > text.size() - at) return false;
  if (!isBetween(text[at + 1], form.firstSecond, form.lastSecond)) return false;
  const std::string_view rest = text.substr(at + 2, form.length - 2);
  return std::all_of(rest.begin(), rest.end(), [](char byte) { return isBetween(byte, 0x80, 0xBF); });
}

// The length of the character at `at`; 0 if the bytes are not a complete character.
std::size_t lengthOfValidCharacterAt(std::string_view text, std::size_t at) {
  if (isASCII(text[at])) return 1;
  for (const UTF8Form& form : longForms) {
    if (fitsForm(text, at, form)) return form.length;
  }
  return 0;
}

// The same, with 1 for a byte that is not part of a character.
std::size_t lengthOfCharacterAt(std::string_view text, std::size_t at) {
  return std::max<std::size_t>(1, lengthOfValidCharacterAt(text, at));
}

// Eight bytes at once, because most text is pure ASCII.
using Block = std::uint64_t;

Block blockAt(std::string_view text, std::size_t at) {
  Block block = 0;
  std::memcpy(&block, text.data() + at, sizeof block);
  return block;
}

constexpr Block lowBits = 0x0101010101010101U;
constexpr Block highBits = lowBits * 0x80U;

bool isASCII(Block block) { return (block & highBits) == 0; }

// Subtracting 1 from an ASCII byte gives the high bit for a zero only.
bool isASCIIWithoutZero(Block block) { return ((block | (block - lowBits)) & highBits) == 0; }

bool copyASCIIWithoutZero(std::string_view text, std::size_t at, char* room) {
  const Block block = blockAt(text, at);
  std::memcpy(room + at, &block, sizeof block);
  return isASCIIWithoutZero(block);
}

bool startsWithASCIIBlock(std::string_view text, std::size_t at) {
  return text.size() - at >= sizeof(Block) && isASCII(blockAt(text, at));
}

constexpr std::size_t longestUTF8CharacterOfOneUnit = 3;
constexpr std::size_t longestUTF8Character = 4;

}  // namespace

std::string_view spaceBothEndsTrimmed(std::string_view text) { return trimmedOf(text, isSpace); }

OptionalStringView spaceBothEndsTrimmed(OptionalStringView text) {
  if (!text) return std::nullopt;
  return spaceBothEndsTrimmed(*text);
}

std::string_view spaceNewLineTabBothEndsTrimmed(std::string_view text) { return trimmedOf(text, isSpaceNewLineTab); }

OptionalStringView spaceNewLineTabBothEndsTrimmed(OptionalStringView text) {
  if (!text) return std::nullopt;
  return spaceNewLineTabBothEndsTrimmed(*text);
}

std::vector<std::string_view> splitAt(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (OptionalStringView rest = text; rest;) pieces.push_back(takePiece(rest, separator));
  return pieces;
}

std::string_view takePiece(OptionalStringView& text, char separator) {
  const std::size_t end = text->find(separator);
  const std::string_view piece = text->substr(0, end);
  text = end == std::string_view::npos ? std::nullopt : OptionalStringView(text->substr(end + 1));
  return piece;
}

std::string asciiLowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

bool booleanAttributeValue(OptionalStringView value) {
  const std::string_view text = value.value_or(std::string_view());
  std::size_t at = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
  at = text.find_first_not_of('0', at);
  return at != std::string_view::npos && std::string_view("YyTt123456789").find(text[at]) != std::string_view::npos;
}

bool hasAtLeastUTF16Units(std::string_view text, std::size_t units) {
  if (text.size() < units) return false;
  if (text.size() / longestUTF8CharacterOfOneUnit >= units) return true;
  std::size_t counted = 0;
  for (std::size_t at = 0; at < text.size() && counted < units;) {
    const std::size_t length = lengthOfCharacterAt(text, at);
    counted += length == longestUTF8Character ? 2 : 1;
    at += length;
  }
  return counted >= units;
}

std::size_t lengthOfCharacterBefore(std::string_view text, std::size_t end) {
  const std::size_t longest = std::min(end, longestUTF8Character);
  for (std::size_t length = 2; length <= longest; ++length) {
    if (lengthOfCharacterAt(text.substr(0, end), end - length) == length) return length;
  }
  return 1;
}

bool isASCIIWithoutZero(std::string_view text) {
  const auto plain = [](char byte) { return isASCII(byte) && byte != '\0'; };
  if (text.size() < sizeof(Block)) return std::all_of(text.begin(), text.end(), plain);
  const std::size_t last = text.size() - sizeof(Block);
  for (std::size_t at = 0; at < last; at += sizeof(Block)) {
    if (!isASCIIWithoutZero(blockAt(text, at))) return false;
  }
  return isASCIIWithoutZero(blockAt(text, last));
}

bool copyASCIIWithoutZero(std::string_view text, char* room) {
  if (text.size() < sizeof(Block)) {
    text.copy(room, text.size());
    return isASCIIWithoutZero(text);
  }
  const std::size_t last = text.size() - sizeof(Block);
  for (std::size_t at = 0; at < last; at += sizeof(Block)) {
    if (!copyASCIIWithoutZero(text, at, room)) return false;
  }
  return copyASCIIWithoutZero(text, last, room);
}

bool isValidUTF8(std::string_view text) {
  if (isASCIIWithoutZero(text)) return true;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = startsWithASCIIBlock(text, at) ? sizeof(Block) : lengthOfValidCharacterAt(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

std::string filledFormat(std::string_view format, OptionalStringView value) {
  constexpr std::string_view place = "%@";
  const std::size_t at = format.find(place);
  if (at == std::string_view::npos) return std::string(format);
  const std::string_view filling = value.value_or("(null)");
  std::string filled;
  filled.reserve(format.size() - place.size() + filling.size());
  filled.append(format.substr(0, at)).append(filling).append(format.substr(at + place.size()));
  return filled;
}

}  // namespace korvex
