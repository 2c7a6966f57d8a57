// From the tokens of a condition to the steps that evaluate it.
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

// Who knows the names in an expression.
class NameResolver {
 public:
  // The slot of a value; absent when nothing of that name is declared.
  [[nodiscard]] virtual std::optional<ValueSlot> slotOf(std::string_view name) const = 0;
  // What is wrong with such a name.
  [[nodiscard]] virtual std::string undeclared(std::string_view name) const = 0;

 protected:
  ~NameResolver() = default;
};

// Where the steps of expressions go, and the texts in them that do not stand in a document as they are.
struct ExpressionStore {
  std::vector<ExpressionStep> steps;
  std::deque<std::string> texts;
};

// Appends the steps of an expression; what it appended before a fault is taken back.
[[nodiscard]] std::optional<ExpressionFault> compileExpression(std::string_view expression,
                                                               std::span<const QXDAOToken> tokens,
                                                               const NameResolver& names, ExpressionStore& store);

}  // namespace korvex
