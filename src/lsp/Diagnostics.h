// The findings of the checks in an open document.
#pragma once

#include <span>
#include <string>

#include "checks/Finding.h"
#include "lsp/Json.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

// An array of the protocol's Diagnostic: the findings of `korvex-dao check`, at most 1,000 of them, each with the range
// of its markup. Related places are left out for a client that does not support relatedInformation.
[[nodiscard]] Json diagnosticsOf(const MarkedDocument& document, bool withRelated, std::span<const Finding> more = {});

// Editors send UTF-8, whatever encoding the text declares: a text without that declaration, of the same length.
[[nodiscard]] std::string withoutEncoding(std::string text);

}  // namespace korvex::lsp
