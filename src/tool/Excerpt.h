// The source line of a finding, and a caret below the place that is meant.
#pragma once

#include <cstddef>
#include <string>

#include "korvex/SourceText.h"

namespace korvex {

// The caret's line of an excerpt stands apart, so that it can be printed in a colour of its own.
struct Excerpt {
  std::string line;
  std::string caretLine;
};

// The line of the character at that offset with the caret below it, which may be one past the end of
// the line. The time it takes does not depend on the length of the line. Tabs stay tabs, other invisible characters are
// escaped, wide ones count two columns, combining ones none, and of a long line only the part around the caret is kept,
// an ellipsis where it was cut.
[[nodiscard]] Excerpt excerptOf(const SourceText& source, std::size_t offset);

}  // namespace korvex
