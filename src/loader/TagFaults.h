// Explains faults inside a tag.
#pragma once

#include <cstddef>
#include <optional>

#include "korvex/SourceText.h"
#include "loader/SyntaxErrors.h"

namespace korvex {

// Explains the misplaced character at `offset` in the markup that begins at `start`; the markup before it is correct.
// Empty if the markup is not a tag, or if the character does not suggest what was intended.
[[nodiscard]] std::optional<SyntaxError> faultInTag(const SourceText& source, std::size_t start, std::size_t offset);

}  // namespace korvex
