// What the checker finds in an open document.
#pragma once

#include "lsp/Json.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

// An array of the protocol's Diagnostic, at most 1,000 of them: the findings of `korvex-dao check` with the range of
// the markup that each is about. Their other places are left out for a client that does not know relatedInformation.
[[nodiscard]] Json diagnosticsOf(const MarkedDocument& document, bool withRelated);

}  // namespace korvex::lsp
