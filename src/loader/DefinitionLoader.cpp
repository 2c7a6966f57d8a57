#include "loader/DefinitionNodes.h"

namespace korvex {

namespace {

constexpr std::size_t firstBlock = std::size_t{4} * 1024;

}  // namespace

std::vector<Definition> loadDefinitions(const Document& document) {
  Arena arena(firstBlock);
  std::vector<Definition> definitions;
  definitions.reserve(maxDefinitions(document));
  forEachDefinition(document, [&](const XMLNode& node) {
    build(definitions.emplace_back(Definition{node, {}, {}}), arena);
  });
  return definitions;
}

}  // namespace korvex
