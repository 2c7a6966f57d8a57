// What is wrong in a tag that stops in the middle.
#pragma once

#include <cstddef>
#include <optional>

#include "korvex/SourceText.h"
#include "loader/SyntaxErrors.h"

namespace korvex {

// Explains the character at `offset`, which is out of place in the markup that begins at `start` and is right up to
// there. Nothing when that is no tag, or when the character tells nothing of what was meant.
[[nodiscard]] std::optional<SyntaxError> faultInTag(const SourceText& source, std::size_t start, std::size_t offset);

}  // namespace korvex
