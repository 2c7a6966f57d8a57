#include "korvex/QXDAOExcept.h"

#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAORule.h"
#include "korvex/QXDAOTry.h"

namespace korvex {

void QXDAOExcept::initWithXML(const XMLNode& xml, QXDAOTry* tryElement) {
  QXDAOElement::initWithXML(xml);
  const OptionalStringView methodName = tryElement->parentMethod()->name();
  if (tryElement->exceptElement()) setError(QXDAORule::SecondExcept, methodName);
  if (xml.hasAttributes()) setError(QXDAORule::ExceptFormat, methodName);
  if (failed()) return;
  tryElement->setExceptElement(this);
  _tryElement = tryElement;
  processNodes(xml);
}

}  // namespace korvex
