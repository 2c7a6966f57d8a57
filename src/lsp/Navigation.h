// Result maps: from result=":name" of a select to <map id="name">, and back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lsp/Json.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

// The names of the maps that the workspace defines, in document order, without duplicates.
[[nodiscard]] std::vector<std::string> mapNames(const Workspace& workspace);

// Arrays of the protocol's Location; null where no map is named.
[[nodiscard]] Json definitionsOf(const MarkedDocument& document, const Position& position, const Workspace& workspace);
[[nodiscard]] Json referencesTo(const MarkedDocument& document, const Position& position, bool withDeclaration,
                                const Workspace& workspace);

}  // namespace korvex::lsp
