// Where the tokens of a condition end, for whoever explains why it was rejected.
#pragma once

#include <cstddef>
#include <string_view>

#include "korvex/Export.h"

namespace korvex {

// The offset of the first character at which no token begins; the size of an expression that consists of tokens and
// white space.
[[nodiscard]] KORVEX_EXPORT std::size_t lengthOfTokens(std::string_view expression);

}  // namespace korvex
