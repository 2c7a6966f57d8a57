#include "korvex/QXDAOConst.h"

#include "dao/core/Building.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"
#include "korvex/QXDAOText.h"

namespace korvex {

void QXDAOConst::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  if (!readDeclaration(xml)) setError(QXDAORule::ConstFormat, xml.stringValue());
}

bool QXDAOConst::readDeclaration(const XMLNode& xml) {
  const XMLAttribute attribute = xml.onlyAttribute();
  if (!attribute) return false;
  setName(attribute.name());
  _text = Building::text(Building::memoryOf(*this), attribute.stringValue());
  return !isEmpty(name()) && !xml.hasChildren();
}

}  // namespace korvex
