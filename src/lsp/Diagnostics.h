// The findings of the checks in an open document.
#pragma once

#include "lsp/Json.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

// An array of the protocol's Diagnostic: the findings of `korvex-dao check`, at most 1,000 of them, each with the range
// of its markup. Related places are left out for a client that does not support relatedInformation.
[[nodiscard]] Json diagnosticsOf(const MarkedDocument& document, bool withRelated);

}  // namespace korvex::lsp
