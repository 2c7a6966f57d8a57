// Strings that may be absent.
//
// All text is UTF-8. Absent (nullopt) differs from empty, but isEmpty() is true for both.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvex {

using OptionalString = std::optional<std::string>;
using OptionalStringView = std::optional<std::string_view>;

// True for an absent string and for one of length 0.
[[nodiscard]] inline bool isEmpty(const OptionalString& text) { return !text || text->empty(); }
[[nodiscard]] inline bool isEmpty(OptionalStringView text) { return !text || text->empty(); }

// Copies a view into an owned string; absent stays absent.
[[nodiscard]] inline OptionalString ownedString(OptionalStringView text) {
  return text ? OptionalString(std::in_place, *text) : std::nullopt;
}

}  // namespace korvex
