// Names in markup, as far as explaining its faults needs them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Strings.h"

namespace korvex {

inline constexpr std::string_view xmlNameEnds = " \t\r\n/>=;<&\"'";

// The name that begins at `offset`, up to the first character that cannot stand in one.
[[nodiscard]] inline std::string_view nameAt(std::string_view text, std::size_t offset) {
  const std::string_view rest = text.substr(std::min(offset, text.size()));
  return rest.substr(0, rest.find_first_of(xmlNameEnds));
}

}  // namespace korvex
