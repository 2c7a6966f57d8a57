#include "Platform/Strings.h"

#include <algorithm>

namespace korvex {

namespace {

std::string_view trimmedOf(std::string_view text, std::string_view unwanted) {
  const std::size_t first = text.find_first_not_of(unwanted);
  if (first == std::string_view::npos) return text.substr(text.size());
  return text.substr(first, text.find_last_not_of(unwanted) - first + 1);
}

bool isContinuationByte(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// The length that a leading byte announces; 1 for ASCII and for bytes that lead nothing.
std::size_t announcedLength(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  if (byte >= 0xF0U && byte <= 0xF4U) return 4;
  if (byte >= 0xE0U && byte < 0xF0U) return 3;
  if (byte >= 0xC2U && byte < 0xE0U) return 2;
  return 1;
}

// The length of the character at `at`; 1 where the bytes are not a whole character.
std::size_t lengthOfCharacterAt(std::string_view text, std::size_t at) {
  const std::size_t length = announcedLength(text[at]);
  if (length > text.size() - at) return 1;
  const std::string_view rest = text.substr(at + 1, length - 1);
  return std::all_of(rest.begin(), rest.end(), isContinuationByte) ? length : 1;
}

constexpr std::size_t longestUTF8CharacterOfOneUnit = 3;
constexpr std::size_t longestUTF8Character = 4;

}  // namespace

OptionalString ownedString(OptionalStringView text) {
  if (!text) return std::nullopt;
  return std::string(*text);
}

std::string_view spaceBothEndsTrimmed(std::string_view text) { return trimmedOf(text, " "); }

OptionalStringView spaceBothEndsTrimmed(OptionalStringView text) {
  if (!text) return std::nullopt;
  return spaceBothEndsTrimmed(*text);
}

std::string_view spaceNewLineTabBothEndsTrimmed(std::string_view text) { return trimmedOf(text, " \n\t"); }

OptionalStringView spaceNewLineTabBothEndsTrimmed(OptionalStringView text) {
  if (!text) return std::nullopt;
  return spaceNewLineTabBothEndsTrimmed(*text);
}

std::vector<std::string_view> splitAt(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  std::size_t begin = 0;
  for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator, begin)) {
    pieces.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  pieces.push_back(text.substr(begin));
  return pieces;
}

std::string asciiLowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

bool booleanAttributeValue(std::string_view text) {
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
