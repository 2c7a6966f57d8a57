// Numbers as texts.
#pragma once

#include <string>

#include "korvex/Value.h"

namespace korvex {

// An integer or a real as SQLite writes it as a text.
[[nodiscard]] std::string textOfNumber(const ValueView& number);
// The shortest text that gives the number back, such as "2.5" and "2".
[[nodiscard]] std::string versionNumber(double version);

}  // namespace korvex
