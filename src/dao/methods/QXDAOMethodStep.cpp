#include "korvex/QXDAOMethodStep.h"

#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOMethod.h"

namespace korvex {

void QXDAOMethodStep::initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod) {
  QXDAOElement::initWithXML(xml);
  _parentMethod = parentMethod;
  _resumable = booleanAttributeValue(xml.valueOfAttribute(C_RESUMABLE));
  processNodes(xml);
}

}  // namespace korvex
