// The source line of a finding, with a caret below the position.
#pragma once

#include <cstddef>
#include <string>

#include "korvex/SourceText.h"

namespace korvex {

// The caret's line is separate, so that it can be printed in another colour.
struct Excerpt {
  std::string line;
  std::string caretLine;
};

// The line of the character at that offset, with the caret below it, which may be one past the end of the line. Takes
// constant time for a line of any length. Tabs are kept, and other invisible characters escaped. Wide characters count
// two columns, combining ones none. A long line is cut around the caret, with an ellipsis at each cut.
[[nodiscard]] Excerpt excerptOf(const SourceText& source, std::size_t offset);

}  // namespace korvex
