#include "korvex/QXDAOMap.h"

#include "dao/core/Reading.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"

namespace korvex {

void QXDAOMap::initNamedElementWithXML(const XMLNode& xml) {
  QXDAOElement::initNamedElementWithXML(xml);
  if (failed()) return;
  setResultClass(xml.valueOfAttribute(C_RESULT));
  if (isEmpty(resultClass())) {
    setErrorWithName(QXDAORule::MissingMapResult);
    return;
  }
  readColumns(xml);
}

void QXDAOMap::readColumns(const XMLNode& xml) {
  _columnPropertyMap.emplace();
  for (const XMLNode& node : xml.children()) {
    if (node.kind() == XMLNodeKind::Comment) continue;
    if (!readColumn(node)) {
      setError(QXDAORule::MapFormat, name(), nodeAtFault(node, xml));
      return;
    }
  }
}

bool QXDAOMap::readColumn(const XMLNode& node) {
  if (node.kind() != XMLNodeKind::Element || node.name() != C_RESULT) return false;
  const auto [property, column] = node.valuesOfAttributes(C_PROPERTY, C_COLUMN);
  if (isEmpty(property) || isEmpty(column)) return false;
  _columnPropertyMap->insert_or_assign(std::string(*column), std::string(*property));
  return true;
}

}  // namespace korvex
