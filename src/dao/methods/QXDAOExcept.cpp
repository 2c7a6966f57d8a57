#include "korvex/QXDAOExcept.h"

#include "dao/core/Messages.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOTry.h"

namespace korvex {

void QXDAOExcept::initWithXML(const XMLNode& xml, QXDAOTry* tryElement) {
  QXDAOElement::initWithXML(xml);
  const OptionalStringView methodName = tryElement->parentMethod()->name();
  if (tryElement->exceptElement()) setError(filledFormat(Messages::tooManyExcepts, methodName));
  if (xml.hasAttributes()) setError(filledFormat(Messages::invalidExcept, methodName));
  if (failed()) return;
  tryElement->setExceptElement(this);
  _tryElement = tryElement;
  processNodes(xml);
}

}  // namespace korvex
