// Finds the definitions among the nodes of a document, and builds them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include "dao/core/Building.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"
#include "korvex/XMLNode.h"

namespace korvex {

// Calls take(node) for each definition, in document order.
template <typename Take>
void forEachDefinition(const Document& document, Take take) {
  const XMLNode root = document.root();
  if (isDefinitionTag(root.name().value_or(std::string_view()))) {
    take(root);
    return;
  }
  for (const XMLNode& child : root.children()) {
    if (child.kind() == XMLNodeKind::Element) take(child);
  }
}

// An upper bound for the number of definitions.
[[nodiscard]] inline std::size_t maxDefinitions(const Document& document) {
  return std::max<std::size_t>(1, document.root().childCount());
}

// Builds or rejects the definition at definition.xml, in the memory of an arena.
inline void build(Definition& definition, Arena& arena) {
  std::optional<QXDAOError> error;
  definition.element = Building::tree(arena, definition.xml, &error);
  if (error) definition.error = std::make_unique<QXDAOError>(std::move(*error));
}

}  // namespace korvex
