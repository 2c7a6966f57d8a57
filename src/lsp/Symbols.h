// The outline of a document: its definitions, and the arguments of methods.
#pragma once

#include <string>

#include "lsp/Workspace.h"

namespace korvex::lsp {

// An array of the protocol's DocumentSymbol, in document order. It is written directly as text: a large document has
// thousands of ranges, and a JSON tree of them takes several times as long.
[[nodiscard]] std::string symbolsOf(const MarkedDocument& document);

}  // namespace korvex::lsp
