// What stands under the cursor.
#pragma once

#include <cstddef>
#include <optional>

#include "korvex/QXDAOPackReader.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

enum class PlaceKind {
  Nothing,     // comments, CDATA, and what else holds no markup
  Content,     // between tags
  TagName,     // of a start tag, behind the "<"
  EndTagName,  // behind the "</"
  InTag,       // in a start tag, between its attributes
  AttributeName,
  AttributeValue,  // between the quotes
};

struct Place {
  PlaceKind kind = PlaceKind::Nothing;
  // Whose start tag this is; of Content the holder, and of EndTagName the element to close. Null when there is none.
  const MarkupElement* element = nullptr;
  const MarkupAttribute* attribute = nullptr;  // of AttributeName and AttributeValue
  Span word;                                   // what stands there: the name, or the value; empty in between
};

// Valid as long as the document's markup.
[[nodiscard]] Place placeAt(const MarkedDocument& document, std::size_t offset);

}  // namespace korvex::lsp
