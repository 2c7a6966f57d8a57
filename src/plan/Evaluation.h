// Evaluates the expressions of conditions.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "plan/ExpressionParser.h"
#include "plan/ValueReading.h"

namespace korvex {

// Whether a value is true: numbers except 0 and NaN, and everything else that is not empty. Null is false.
[[nodiscard]] bool isTrue(const ValueView& value);

// The value of an expression; absent if an operator cannot be applied. `stack` is scratch memory.
[[nodiscard]] std::optional<ValueView> evaluate(const std::vector<ExpressionStep>& steps, std::uint32_t first,
                                                ValueScope& scope, std::vector<ValueView>& stack,
                                                ValueFailure& failure);

}  // namespace korvex
