#include "DAO/Core/Messages.h"
#include "DAO/QXDAOElement.h"

namespace korvex {

void QXDAOKeyValueFormatter::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  _prefix = ownedString(xml.valueOfAttribute(C_PREFIX));
  _pairs = ownedString(xml.valueOfAttribute(C_PAIRS));
  _join = ownedString(xml.valueOfAttribute(C_JOIN));
  if (isEmpty(_prefix) || isEmpty(_pairs) || isEmpty(_join)) {
    setError(filledFormat(Messages::invalidFragment, xml.name()));
  }
}

}  // namespace korvex
