// Small text functions that all elements share.
//
// All text is UTF-8. None of these functions keeps a reference
// to its argument, depends on the locale or touches shared state; all may run on any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvex/Export.h"
#include "korvex/OptionalString.h"

namespace korvex {

// The white space of XML.
inline constexpr std::string_view xmlWhiteSpace = " \t\r\n";

[[nodiscard]] constexpr bool isXMLWhiteSpace(char character) {
  return xmlWhiteSpace.find(character) != std::string_view::npos;
}

// The text in single quotes, for a message.
[[nodiscard]] inline bool startsWithSmallLetter(std::string_view word) {
  return !word.empty() && word[0] >= 'a' && word[0] <= 'z';
}
[[nodiscard]] inline std::string quoted(std::string_view text) { return std::string("'").append(text).append("'"); }

// The part of the text without spaces at both ends. The result points into the argument.
[[nodiscard]] KORVEX_EXPORT std::string_view spaceBothEndsTrimmed(std::string_view text);
[[nodiscard]] KORVEX_EXPORT OptionalStringView spaceBothEndsTrimmed(OptionalStringView text);

// The part of the text without spaces, tabs and line feeds at both ends; a carriage return stays.
// The result points into the argument.
[[nodiscard]] KORVEX_EXPORT std::string_view spaceNewLineTabBothEndsTrimmed(std::string_view text);
[[nodiscard]] KORVEX_EXPORT OptionalStringView spaceNewLineTabBothEndsTrimmed(OptionalStringView text);

// The pieces of a text between separators: n separators give n + 1 pieces, empty ones included.
// The pieces point into the argument.
[[nodiscard]] KORVEX_EXPORT std::vector<std::string_view> splitAt(std::string_view text, char separator);

// The same, one piece at a time: removes the first piece and its separator from a text that is present. After the last
// piece, the text is absent.
[[nodiscard]] KORVEX_EXPORT std::string_view takePiece(OptionalStringView& text, char separator);

// The text with A to Z replaced by a to z; other bytes are unchanged.
[[nodiscard]] KORVEX_EXPORT std::string asciiLowerCase(std::string_view text);

// The Boolean attribute rule: after leading white space, an optional sign and leading zeros, the
// text is true when its next character is Y, y, T, t or a digit 1 to 9. An absent text is false.
[[nodiscard]] KORVEX_EXPORT bool booleanAttributeValue(OptionalStringView text);

// True when the text has at least `units` UTF-16 code units. A character outside the Basic
// Multilingual Plane counts two; a byte that is not part of valid UTF-8 counts one.
[[nodiscard]] KORVEX_EXPORT bool hasAtLeastUTF16Units(std::string_view text, std::size_t units);

// True when every byte is one of 1 to 127.
[[nodiscard]] KORVEX_EXPORT bool isASCIIWithoutZero(std::string_view text);

// Copies a text to a buffer that is large enough, if every byte is in 1 to 127. Otherwise returns false, and the
// content of the buffer is undefined.
[[nodiscard]] KORVEX_EXPORT bool copyASCIIWithoutZero(std::string_view text, char* room);

// Whether a byte is a UTF-8 continuation byte.
[[nodiscard]] constexpr bool continuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Whether the text is valid UTF-8 (RFC 3629): no truncated or overlong character, no surrogate.
[[nodiscard]] KORVEX_EXPORT bool isValidUTF8(std::string_view text);

// The byte length, 1 to 4, of the character that ends just before `end` (0 < end <= text.size()).
// A byte that is not the end of valid UTF-8 is a character of its own.
[[nodiscard]] KORVEX_EXPORT std::size_t lengthOfCharacterBefore(std::string_view text, std::size_t end);

// `format` with its first "%@" replaced by `value`, "(null)" when the value is absent. The value is
// taken literally: a "%@" inside it stays.
[[nodiscard]] KORVEX_EXPORT std::string filledFormat(std::string_view format, OptionalStringView value);

}  // namespace korvex
