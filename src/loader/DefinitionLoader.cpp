#include <string_view>
#include <utility>

#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"
#include "korvex/XMLNode.h"

namespace korvex {

namespace {

Definition definitionFrom(const XMLNode& xml) {
  std::optional<QXDAOError> error;
  std::unique_ptr<QXDAOElement> element = QXDAOElement::elementWithXML(xml, &error);
  return {xml, std::move(element), error ? std::make_unique<QXDAOError>(std::move(*error)) : nullptr};
}

}  // namespace

std::vector<Definition> loadDefinitions(const Document& document) {
  std::vector<Definition> definitions;
  const XMLNode root = document.root();
  if (isDefinitionTag(root.name().value_or(std::string_view()))) {
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
