// Reads a decimal floating-point number, with "." as the separator whatever the locale.
#pragma once

#include <optional>
#include <string_view>

#include "korvex/Export.h"

namespace korvex {

// The number that the whole text spells, white space allowed around it: an optional sign, digits
// with an optional fraction ("5", "5.", ".5", "5.25"), an optional exponent ("1e3", "1E-3").
// Absent when anything else stands in the text (hexadecimal, infinity and NaN forms included) or
// when the value lies beyond the range of a double, too large or too small to be told from zero.
[[nodiscard]] KORVEX_EXPORT std::optional<double> scanDecimalNumber(std::string_view text);

}  // namespace korvex
