#include "korvex/QXDAOCryptProperty.h"

#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"

namespace korvex {

void QXDAOCryptProperty::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  if (!validCryptDescription(xml)) setError(QXDAORule::CryptFormat, xml.stringValue());
}

bool QXDAOCryptProperty::validCryptDescription(const XMLNode& xml) {
  if (xml.attributeCount() != 2) return false;
  for (const XMLAttribute& attribute : xml.attributes()) {
    if (attribute.name() == C_CLASS) setClassName(attribute.stringValue());
    if (attribute.name() == C_PROPERTY) setPropertyName(attribute.stringValue());
  }
  return !isEmpty(className()) && !isEmpty(propertyName()) && !xml.hasChildren();
}

}  // namespace korvex
