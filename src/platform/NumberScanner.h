// Reads a decimal floating-point number. The decimal separator is always ".", in every locale.
#pragma once

#include <optional>
#include <string_view>

#include "korvex/Export.h"

namespace korvex {

// The number that the text spells: an optional sign, digits with an optional fraction ("5", "5.", ".5",
// "5.25") and an optional exponent ("1e3", "1E-3"), with white space allowed around it. Absent if the
// text has any other form, such as a hexadecimal number, infinity or NaN.
//
// Every number of this form has a value, the nearest finite double: one too large for a double becomes
// the largest double of its sign, one too small becomes zero.
[[nodiscard]] KORVEX_EXPORT std::optional<double> scanDecimalNumber(std::string_view text);

}  // namespace korvex
