// Checks whether the tokens of a condition form a valid expression.
//
// docs/execution.md has the grammar. QXDAOEvaluator finds the tokens; this parses them.
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
  std::size_t offset = 0;  // in bytes from the start of the expression; its length if something is missing at the end
  std::string message;
  bool undeclared = false;  // a name in it stands for no value
};

// Absent if the expression is valid. The tokens must be those of the expression. May run on any thread.
[[nodiscard]] KORVEX_EXPORT std::optional<ExpressionFault> findExpressionFault(std::string_view expression,
                                                                               std::span<const QXDAOToken> tokens);

}  // namespace korvex
