#include "korvex/QXDAOMethodStep.h"

#include "dao/core/Reading.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOMethod.h"

namespace korvex {

void QXDAOMethodStep::initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod) {
  QXDAOElement::initWithXML(xml);
  _parentMethod = parentMethod;
  readBoolean(xml.valueOfAttribute(C_RESUMABLE), _resumable);
  processNodes(xml);
}

}  // namespace korvex
