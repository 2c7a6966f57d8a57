// A simple implementation of the rules for list references, rule by rule and unit by unit, regardless of speed, with
// which the library's scan is compared.
#pragma once

#include <string>
#include <string_view>

#include "fuzz/Units.h"

namespace korvex {

// Without spaces, line feeds and tabs at both ends.
[[nodiscard]] Units trimmedPlainly(Units units);

// The text with its list references expanded.
[[nodiscard]] std::string expandedPlainly(std::string_view text);

}  // namespace korvex
