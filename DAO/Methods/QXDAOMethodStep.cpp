#include "DAO/QXDAOElement.h"

namespace korvex {

void QXDAOMethodStep::initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod) {
  QXDAOElement::initWithXML(xml);
  _parentMethod = parentMethod;
  const OptionalStringView resumable = xml.valueOfAttribute(C_RESUMABLE);
  if (!isEmpty(resumable)) _resumable = booleanAttributeValue(*resumable);
  processNodes(xml);
}

}  // namespace korvex
