// Attribute values that are read as something other than they look like.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "language/Vocabulary.h"

namespace korvex {

struct Doubt {
  std::string message;
  std::string help;
};

// Absent if the value is clear, or if its intention cannot be guessed.
[[nodiscard]] std::optional<Doubt> doubtAbout(const AttributeEntry& attribute, std::string_view value);

}  // namespace korvex
