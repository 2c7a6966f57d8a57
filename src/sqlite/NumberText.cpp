#include "sqlite/NumberText.h"

#include <sqlite3.h>

#include <array>
#include <charconv>

namespace korvex {

std::string textOfNumber(const ValueView& number) {
  if (number.type() == ValueType::Integer) return std::to_string(number.integer());
  std::array<char, 40> buffer{};
  return sqlite3_snprintf(static_cast<int>(buffer.size()), buffer.data(), "%!.15g", number.real());
}

std::string versionNumber(double version) {
  std::array<char, 32> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), version).ptr};
}

}  // namespace korvex
