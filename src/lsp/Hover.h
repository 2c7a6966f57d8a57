// What an element or an attribute is for.
#pragma once

#include "lsp/Json.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

// The protocol's Hover; null where there is nothing to describe.
[[nodiscard]] Json hoverAt(const MarkedDocument& document, const Position& position);

}  // namespace korvex::lsp
