// The definitions of a document, each of them built or rejected.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "korvex/Document.h"
#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"
#include "korvex/XMLNode.h"

namespace korvex {

// One definition of a document, built or rejected.
struct Definition {
  XMLNode xml;                            // valid while the document lives, like everything read through it
  std::unique_ptr<QXDAOElement> element;  // null if the definition was rejected
  std::unique_ptr<QXDAOError> error;  // null if the definition was built; its nodes are valid while the document lives

  [[nodiscard]] std::string_view tag() const { return xml.name().value_or(std::string_view()); }
  // The position of its start tag.
  [[nodiscard]] XMLPosition position() const { return xml.position().value_or(XMLPosition()); }
};

// Builds every definition of a document, in document order; a rejected one does not affect the others. Definitions are
// the child elements of the root. If the root is itself a definition (select, sql, map…), it is the only one. The
// elements may outlive the document.
[[nodiscard]] KORVEX_EXPORT std::vector<Definition> loadDefinitions(const Document& document);

}  // namespace korvex
