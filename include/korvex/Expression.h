// Whether the tokens of a condition form an expression, and where they stop to.
//
// docs/execution.md has the grammar. QXDAOEvaluator finds tokens; this says what they add up to.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/QXDAOEvaluator.h"

namespace korvex {

struct ExpressionFault {
  std::size_t offset = 0;  // in bytes from the beginning of the expression; its length where something is missing
  std::string message;
};

// Absent when the expression parses. The tokens are those of the expression. Any thread.
[[nodiscard]] KORVEX_EXPORT std::optional<ExpressionFault> findExpressionFault(std::string_view expression,
                                                                               std::span<const QXDAOToken> tokens);

}  // namespace korvex
