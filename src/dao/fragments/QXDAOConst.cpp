#include "korvex/QXDAOConst.h"

#include "dao/core/Messages.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOText.h"

namespace korvex {

void QXDAOConst::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  if (!readDeclaration(xml)) setError(filledFormat(Messages::invalidConst, xml.stringValue()));
}

bool QXDAOConst::readDeclaration(const XMLNode& xml) {
  const XMLAttribute attribute = xml.onlyAttribute();
  if (!attribute) return false;
  setName(attribute.name());
  _text = QXDAOText::elementWithText(attribute.stringValue());
  return !isEmpty(name()) && !xml.hasChildren();
}

}  // namespace korvex
