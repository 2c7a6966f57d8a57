#include "korvex/QXDAOContainerElement.h"

#include <array>

#include "dao/core/Building.h"
#include "korvex/Keywords.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOChoose.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOExcept.h"
#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAORule.h"
#include "korvex/QXDAOText.h"
#include "korvex/QXDAOTrim.h"
#include "korvex/QXDAOTry.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

using ChildBuilder = std::unique_ptr<QXDAOElement> (*)(const XMLNode& xml, QXDAOContainerElement& parent);

template <typename T>
std::unique_ptr<QXDAOElement> buildPlain(const XMLNode& xml, QXDAOContainerElement& parent) {
  auto element = Building::element<T>(Building::memoryOf(parent));
  element->initWithXML(xml);
  return element;
}

// For the elements that know their parent; the placement rule has checked its class.
template <typename T, typename Parent>
std::unique_ptr<QXDAOElement> buildLinked(const XMLNode& xml, QXDAOContainerElement& parent) {
  auto element = Building::element<T>(Building::memoryOf(parent));
  element->initWithXML(xml, static_cast<Parent*>(&parent));
  return element;
}

using ParentTest = bool (*)(const QXDAOContainerElement& parent);

bool anyParent(const QXDAOContainerElement& /*parent*/) { return true; }

template <typename T>
bool parentIs(const QXDAOContainerElement& parent) {
  return QXDAOElementCast<T>(&parent) != nullptr;
}

struct TagRule {
  std::string_view tag;
  ChildBuilder build;
  ParentTest mayStandIn = anyParent;
  QXDAORule misplaced = {};  // the rule that it violates elsewhere
};

// The tag table: every element that is allowed inside another one, and where. It is constant-initialised, so it needs
// no lock.
constexpr std::array<TagRule, 12> tagTable = {{
    {C_IF, buildPlain<QXDAOCondition>},
    {C_CHOOSE, buildPlain<QXDAOChoose>},
    {C_WHEN, buildPlain<QXDAOCondition>},
    {C_OTHERWISE, buildPlain<QXDAOCondition>},
    {C_FOREACH, buildPlain<QXDAOForeach>},
    {C_WHERE, buildPlain<QXDAOTrim>},
    {C_SET, buildPlain<QXDAOTrim>},
    {C_TRIM, buildPlain<QXDAOTrim>},
    {C_STEP, buildLinked<QXDAOMethodStep, QXDAOMethod>, parentIs<QXDAOMethod>, QXDAORule::MisplacedStep},
    {C_TRY, buildLinked<QXDAOTry, QXDAOMethod>, parentIs<QXDAOMethod>, QXDAORule::MisplacedTry},
    {C_EXCEPT, buildLinked<QXDAOExcept, QXDAOTry>, parentIs<QXDAOTry>, QXDAORule::MisplacedExcept},
    {C_FORMAT, buildPlain<QXDAOKeyValueFormatter>},
}};

}  // namespace

std::optional<QXDAOElementList> QXDAOContainerElement::takeChildren() {
  if (!children()) return std::nullopt;
  QXDAOElementList taken;
  taken.reserve(children()->size());
  for (std::unique_ptr<QXDAOElement>& child : _children.items()) {
    keepMemory(*child);
    taken.push_back(std::move(child));
  }
  _children = {};
  return taken;
}

void QXDAOContainerElement::setChildren(std::optional<QXDAOElementList> children) {
  _children = children ? Building::list(Building::memoryOf(*this), std::span(*children)) : decltype(_children)();
}

void QXDAOContainerElement::dissolveChild(QXDAOContainerElement& child) {
  auto children = std::move(child._children);
  _children = std::move(children);
}

// An earlier failure, such as the missing result type of a select, does not stop the walk.
void QXDAOContainerElement::processNodes(const XMLNode& xml) {
  TreeMemory* const memory = Building::memoryOf(*this);
  QXDAOElementList ownList;
  QXDAOElementList& list = memory ? memory->arena()->pendingChildren : ownList;
  const std::size_t first = list.size();
  if (appendChildren(xml, list)) _children = Building::list(memory, std::span(list).subspan(first));
  list.resize(first);
}

bool QXDAOContainerElement::appendChildren(const XMLNode& xml, QXDAOElementList& children) {
  for (const XMLNode& node : xml.children()) {
    if (node.kind() == XMLNodeKind::Text) appendText(node, children);
    if (node.kind() == XMLNodeKind::Element && !appendElement(node, children)) return false;
  }
  return true;
}

void QXDAOContainerElement::appendText(const XMLNode& node, QXDAOElementList& children) const {
  auto text = Building::text(Building::memoryOf(*this), spaceNewLineTabBothEndsTrimmed(node.text()));
  if (!isEmpty(text->expression())) children.push_back(std::move(text));
}

bool QXDAOContainerElement::appendElement(const XMLNode& node, QXDAOElementList& children) {
  const OptionalStringView tag = node.name();
  const TagRule* rule = rowWith(tagTable, &TagRule::tag, tag);
  if (!rule) {
    setError(QXDAORule::UnknownElement, tag, node);
    return false;
  }
  if (!rule->mayStandIn(*this)) {
    setError(rule->misplaced, {}, node);
    return false;
  }
  std::unique_ptr<QXDAOElement> child = rule->build(node, *this);
  if (adoptErrorOf(*child, node)) return false;
  children.push_back(std::move(child));
  return true;
}

}  // namespace korvex
