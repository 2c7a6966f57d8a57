// Counts in messages.
#pragma once

#include <cstddef>
#include <string>

namespace korvex {

// "1 error", "2 errors".
[[nodiscard]] inline std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

}  // namespace korvex
