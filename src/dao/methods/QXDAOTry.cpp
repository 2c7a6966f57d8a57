#include "korvex/QXDAOTry.h"

#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOExcept.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAORule.h"

namespace korvex {

void QXDAOTry::initWithXML(const XMLNode& xml, QXDAOMethod* parentMethod) {
  QXDAOElement::initWithXML(xml);
  _parentMethod = parentMethod;
  _parentMethod->setTryBlock(true);
  if (xml.hasAttributes()) {
    setError(QXDAORule::TryFormat, _parentMethod->name());
    return;
  }
  processNodes(xml);
  if (failed()) {
    _exceptElement = nullptr;  // destroyed with the children of the failed walk
    return;
  }
  if (!endsWithExcept()) setError(QXDAORule::TryFormat, _parentMethod->name());
}

bool QXDAOTry::endsWithExcept() const {
  return _exceptElement != nullptr && children()->back().get() == _exceptElement;
}

}  // namespace korvex
