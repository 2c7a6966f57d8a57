#include "korvex/QXDAOChoose.h"

#include <algorithm>
#include <iterator>

#include "korvex/Keywords.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"

namespace korvex {

namespace {

bool mayStandInChoose(const QXDAOElement* child, bool last) {
  const auto* condition = QXDAOElementCast<QXDAOCondition>(child);
  if (!condition || condition->type() == QXDAOConditionTypeIf) return false;
  return last || condition->type() != QXDAOConditionTypeOtherwise;
}

// The position of the first child that violates the rule, or the end.
QXDAOElementSpan::iterator firstOffender(QXDAOElementSpan children) {
  return std::find_if(children.begin(), children.end(), [children](const std::unique_ptr<QXDAOElement>& child) {
    return !mayStandInChoose(child.get(), child == children.back());
  });
}

// The document node of a child: the walk creates one child per element, in order. A text has no node of its own, so its
// parent is used.
XMLNode nodeOfChild(const XMLNode& xml, QXDAOElementSpan children, QXDAOElementSpan::iterator child) {
  const auto isElement = [](const auto& sibling) { return sibling->kind() != QXDAOElementKindText; };
  if (!isElement(*child)) return xml;
  auto before = std::count_if(children.begin(), child, isElement);
  for (const XMLNode& node : xml.children()) {
    if (node.kind() == XMLNodeKind::Element && before-- == 0) return node;
  }
  return xml;
}

}  // namespace

void QXDAOChoose::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  if (xml.hasAttributes()) {
    setError(QXDAORule::ConditionFormat, C_CHOOSE);
    return;
  }
  processNodes(xml);
  if (failed()) return;
  const QXDAOElementSpan list = *children();
  const auto offender = firstOffender(list);
  if (offender != list.end()) setError(QXDAORule::ChooseContent, {}, nodeOfChild(xml, list, offender));
}

}  // namespace korvex
