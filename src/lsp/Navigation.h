// Result maps: from a select's result=":name" to the <map id="name"> and back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lsp/Json.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

// The names that definitions of the workspace's maps have, in the order of their places, each once.
[[nodiscard]] std::vector<std::string> mapNames(const Workspace& workspace);

// Arrays of the protocol's Location; null where no map is named.
[[nodiscard]] Json definitionsOf(const MarkedDocument& document, const Position& position, const Workspace& workspace);
[[nodiscard]] Json referencesTo(const MarkedDocument& document, const Position& position, bool withDeclaration,
                                const Workspace& workspace);

}  // namespace korvex::lsp
