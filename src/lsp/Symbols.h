// The outline of a document: its definitions, and the arguments of its methods.
#pragma once

#include <string>

#include "lsp/Workspace.h"

namespace korvex::lsp {

// An array of the protocol's DocumentSymbol, in document order. It is written as text, since a large document has
// thousands of ranges: as a tree of JSON they take several times as long.
[[nodiscard]] std::string symbolsOf(const MarkedDocument& document);

}  // namespace korvex::lsp
