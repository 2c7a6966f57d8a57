#include "DAO/Core/Reading.h"
#include "DAO/QXDAOElement.h"

namespace korvex {

void QXDAOMethodStep::initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod) {
  QXDAOElement::initWithXML(xml);
  _parentMethod = parentMethod;
  _resumable = booleanAttribute(xml, C_RESUMABLE);
  processNodes(xml);
}

}  // namespace korvex
