// Text as UTF-16 code units, the measure in which the language counts. Written for plainness, apart
// from the library's own reading of UTF-8, which the fuzz targets hold against it.
#pragma once

#include <string>
#include <string_view>

namespace korvex {

// UTF-16 code units. A byte that belongs to no valid UTF-8 character is one element as well, kept
// apart from all code units by adding strayByte.
using Units = std::u32string;
inline constexpr char32_t strayByte = 0x110000;

[[nodiscard]] Units unitsOf(std::string_view text);
// Back to UTF-8; half of a surrogate pair becomes U+FFFD.
[[nodiscard]] std::string textOf(const Units& units);

// Whether no byte of the text is a stray one.
[[nodiscard]] bool isWhollyUTF8(std::string_view text);

}  // namespace korvex
