// Compiles the tokens of a condition to the steps that evaluate it.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/Expression.h"
#include "korvex/QXDAOEvaluator.h"
#include "plan/Instruction.h"

namespace korvex {

// Resolves the names in an expression.
class NameResolver {
 public:
  // The slot of a value; absent if the name is not declared.
  [[nodiscard]] virtual std::optional<ValueSlot> slotOf(std::string_view name) const = 0;
  // What is wrong with such a name.
  [[nodiscard]] virtual std::string undeclared(std::string_view name) const = 0;

 protected:
  ~NameResolver() = default;
};

// The output for the steps of expressions, and for texts in them that are not in a document verbatim.
struct ExpressionStore {
  std::vector<ExpressionStep> steps;
  std::deque<std::string> texts;
};

// Appends the steps of an expression; on an error, appends nothing.
[[nodiscard]] std::optional<ExpressionFault> compileExpression(std::string_view expression,
                                                               std::span<const QXDAOToken> tokens,
                                                               const NameResolver& names, ExpressionStore& store);

// The symbol of an operator, such as "=="; empty for anything else.
[[nodiscard]] std::string_view symbolOf(ExpressionOperation operation);

}  // namespace korvex
