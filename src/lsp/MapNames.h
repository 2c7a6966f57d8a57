// Where result maps are named in a document: <map id="name">, and result=":name" of a select.
#pragma once

#include <string>
#include <vector>

#include "korvex/QXDAOPackReader.h"
#include "lsp/TextDocument.h"
#include "markup/Markup.h"

namespace korvex::lsp {

enum class MapRole { Declaration, Reference };

struct MapName {
  MapRole role;
  std::string name;
  Span span;  // of the name alone, without the colon and brackets around it
  Range range;
};

// In document order.
[[nodiscard]] std::vector<MapName> mapNamesIn(const TextDocument& text, const Markup& markup);

}  // namespace korvex::lsp
