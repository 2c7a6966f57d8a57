// Values of attributes that are taken for something else than they look like.
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

// Absent when the value is clear, or when nobody can know what it was meant for.
[[nodiscard]] std::optional<Doubt> doubtAbout(const AttributeEntry& attribute, std::string_view value);

}  // namespace korvex
