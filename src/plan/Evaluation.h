// Evaluating the expressions of conditions.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "plan/ExpressionParser.h"
#include "plan/ValueReading.h"

namespace korvex {

// What counts as true: numbers but 0 and what is none, and whatever is not empty. Null does not.
[[nodiscard]] bool isTrue(const ValueView& value);

// The value of an expression; absent when an operator cannot be applied. `stack` is room to work in.
[[nodiscard]] std::optional<ValueView> evaluate(const std::vector<ExpressionStep>& steps, std::uint32_t first,
                                                ValueScope& scope, std::vector<ValueView>& stack,
                                                ValueFailure& failure);

}  // namespace korvex
