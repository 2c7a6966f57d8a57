#include "DAO/Core/Messages.h"
#include "DAO/QXDAOElement.h"

namespace korvex {

void QXDAOCryptProperty::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  if (!validCryptDescription(xml)) setError(filledFormat(Messages::invalidCrypt, xml.stringValue()));
}

bool QXDAOCryptProperty::validCryptDescription(const XMLNode& xml) {
  if (xml.attributeCount() != 2) return false;
  for (const XMLAttribute& attribute : xml.attributes()) {
    if (attribute.name() == C_CLASS) _className = ownedString(attribute.stringValue());
    if (attribute.name() == C_PROPERTY) _propertyName = ownedString(attribute.stringValue());
  }
  return !isEmpty(_className) && !isEmpty(_propertyName) && xml.childCount() == 0;
}

}  // namespace korvex
