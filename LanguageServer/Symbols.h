// The outline of a document: its definitions, and the arguments of its methods.
#pragma once

#include "LanguageServer/Json.h"
#include "LanguageServer/Workspace.h"

namespace korvex::lsp {

// An array of the protocol's DocumentSymbol, in document order.
[[nodiscard]] Json symbolsOf(const MarkedDocument& document);

}  // namespace korvex::lsp
