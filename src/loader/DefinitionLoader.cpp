#include <algorithm>
#include <array>
#include <utility>

#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"
#include "korvex/XMLNode.h"

namespace korvex {

namespace {

constexpr std::array definitionTags{C_SQL,    C_MAP,    C_CONST,  C_CRYPT,  C_PACK,
                                    C_SELECT, C_UPDATE, C_INSERT, C_DELETE, C_UPGRADE};

bool isDefinition(const XMLNode& element) {
  return std::find(definitionTags.begin(), definitionTags.end(), element.name()) != definitionTags.end();
}

Definition definitionFrom(const XMLNode& xml) {
  std::optional<QXDAOError> error;
  std::unique_ptr<QXDAOElement> element = QXDAOElement::elementWithXML(xml, &error);
  return {xml, std::move(element), error ? std::make_unique<QXDAOError>(std::move(*error)) : nullptr};
}

}  // namespace

std::vector<Definition> loadDefinitions(const Document& document) {
  std::vector<Definition> definitions;
  const XMLNode root = document.root();
  if (isDefinition(root)) {
    definitions.push_back(definitionFrom(root));
    return definitions;
  }
  definitions.reserve(root.childCount());
  for (const XMLNode& child : root.children()) {
    if (child.kind() == XMLNodeKind::Element) definitions.push_back(definitionFrom(child));
  }
  return definitions;
}

}  // namespace korvex
