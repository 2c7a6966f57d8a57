// What is at the cursor.
#pragma once

#include <cstddef>
#include <optional>

#include "korvex/QXDAOPackReader.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

enum class PlaceKind {
  Nothing,     // comments, CDATA, and other markup that contains no elements
  Content,     // between tags
  TagName,     // of a start tag, after the "<"
  EndTagName,  // after the "</"
  InTag,       // in a start tag, between its attributes
  AttributeName,
  AttributeValue,  // between the quotes
};

struct Place {
  PlaceKind kind = PlaceKind::Nothing;
  // The element of the start tag; for Content the parent, for EndTagName the element to close. Null when there is none.
  const MarkupElement* element = nullptr;
  const MarkupAttribute* attribute = nullptr;  // for AttributeName and AttributeValue
  Span word;                                   // the name or the value there; empty in between
};

// Valid as long as the document's markup.
[[nodiscard]] Place placeAt(const MarkedDocument& document, std::size_t offset);

}  // namespace korvex::lsp
