// Arguments and results of methods as JSON.
#pragma once

#include <optional>
#include <string>

#include "korvex/Value.h"
#include "tool/ElementJson.h"

namespace korvex {

// true and false are 1 and 0, as in SQL. Absent for an integer that SQL does not have.
[[nodiscard]] std::optional<Value> valueOfJson(const Json& json);

// A blob is a string of hexadecimal digits, as in SQL: "x'0A'". NaN and the infinities are null.
[[nodiscard]] Json jsonOfValue(const Value& value);

// A value on one line, as SQL writes it: NULL, 18, 'Ada', x'0A'.
[[nodiscard]] std::string sqlOfValue(const ValueView& value);

}  // namespace korvex
