#include "korvex/QXDAOKeyValueFormatter.h"

#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"

namespace korvex {

void QXDAOKeyValueFormatter::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  const auto [prefix, pairs, join] = xml.valuesOfAttributes(C_PREFIX, C_PAIRS, C_JOIN);
  setPrefix(prefix);
  setPairs(pairs);
  setJoin(join);
  if (isEmpty(prefix) || isEmpty(pairs) || isEmpty(join)) {
    setError(QXDAORule::FragmentFormat, xml.name());
  }
}

}  // namespace korvex
