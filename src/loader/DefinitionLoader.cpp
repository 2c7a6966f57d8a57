#include "loader/DefinitionNodes.h"

namespace korvex {

std::vector<Definition> loadDefinitions(const Document& document) {
  std::vector<Definition> definitions;
  definitions.reserve(maxDefinitions(document));
  forEachDefinition(document, [&](const XMLNode& node) { build(definitions.emplace_back(Definition{node, {}, {}})); });
  return definitions;
}

}  // namespace korvex
