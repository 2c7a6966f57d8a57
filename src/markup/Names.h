// Names in markup.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "markup/Span.h"

namespace korvex {

// Any of these ends a name.
inline constexpr std::string_view xmlNameEnds = " \t\r\n/>=;<&\"'";

// The name that begins at `offset`, up to the first character that cannot be part of it.
[[nodiscard]] inline Span nameSpanAt(std::string_view text, std::size_t offset) {
  return {offset, std::min(text.find_first_of(xmlNameEnds, offset), text.size())};
}
[[nodiscard]] inline std::string_view nameAt(std::string_view text, std::size_t offset) {
  return nameSpanAt(text, std::min(offset, text.size())).of(text);
}

}  // namespace korvex
