// Makes text from documents safe to print: characters that would move the cursor, change colours or reorder a line are
// escaped. Text is UTF-8; invalid bytes are escaped one by one.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvex {

// The first character of a text that is not empty: a byte and the continuation bytes after it.
[[nodiscard]] std::string_view firstCharacter(std::string_view text);

// The text after its first `count` characters; empty when it has no more than that.
[[nodiscard]] std::string_view withoutCharacters(std::string_view text, std::size_t count);

// The offset of the character that ends before `end`, which is not 0.
[[nodiscard]] std::size_t startOfCharacterBefore(std::string_view text, std::size_t end);

// How many columns of a terminal a character takes: 0, 1 or 2. An approximation of Unicode's East Asian Width (UAX #11)
// by whole blocks; terminals differ, for example with joined emoji.
[[nodiscard]] std::size_t columnsOf(std::string_view character);

// The text on one line: \n, \r and \t for line feed, carriage return and tab, \x1b for an escape,
// \u202e for a character that reverses the line, and so on. A backslash is unchanged.
[[nodiscard]] std::string visibleText(std::string_view text);

// The same with its line feeds as they are.
[[nodiscard]] std::string visibleLines(std::string_view text);

// JSON as it is safe to print: the characters that visibleText escapes outside ASCII are \uXXXX in it, which means the
// same.
[[nodiscard]] std::string visibleJson(std::string_view json);

}  // namespace korvex
