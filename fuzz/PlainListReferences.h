// The rules for list references once more, rule by rule and unit by unit as the language puts them,
// with no thought for speed: what the library's scan is held against.
#pragma once

#include <string>
#include <string_view>

#include "fuzz/Units.h"

namespace korvex {

// Without spaces, line feeds and tabs at both ends.
[[nodiscard]] Units trimmedPlainly(Units units);

// The text with its list references written out.
[[nodiscard]] std::string expandedPlainly(std::string_view text);

}  // namespace korvex
