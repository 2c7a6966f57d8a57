#include "Loader/DefinitionLoader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvex {

namespace {

constexpr std::array definitionTags{C_SQL,    C_MAP,    C_CONST,  C_CRYPT,  C_PACK,
                                    C_SELECT, C_UPDATE, C_INSERT, C_DELETE, C_UPGRADE};

bool isDefinition(const XMLNode& element) {
  return std::find(definitionTags.begin(), definitionTags.end(), element.name()) != definitionTags.end();
}

Definition definitionFrom(const XMLNode& xml) {
  Definition definition;
  definition.tag = xml.name().value_or(std::string_view());
  definition.position = xml.position().value_or(XMLPosition());
  definition.element = QXDAOElement::elementWithXML(xml, &definition.error);
  return definition;
}

}  // namespace

std::vector<Definition> loadDefinitions(const Document& document) {
  std::vector<Definition> definitions;
  const XMLNode root = document.root();
  if (isDefinition(root)) {
    definitions.push_back(definitionFrom(root));
    return definitions;
  }
  for (const XMLNode& child : root.children()) {
    if (child.kind() == XMLNodeKind::Element) definitions.push_back(definitionFrom(child));
  }
  return definitions;
}

}  // namespace korvex
