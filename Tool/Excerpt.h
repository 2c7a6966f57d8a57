// The source line of a finding, and a caret below the place that is meant.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvex {

// The caret's line of an excerpt stands apart, so that it can be printed in a colour of its own.
struct Excerpt {
  std::string line;
  std::string caretLine;
};

// The line with the caret below the character in `column`, which counts from 1 and may be one past
// the end. Tabs stay tabs, other invisible characters are escaped, and of a long line only the part
// around the caret is kept, an ellipsis where it was cut.
[[nodiscard]] Excerpt excerptOf(std::string_view line, std::size_t column);

}  // namespace korvex
