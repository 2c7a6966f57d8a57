#include "korvex/QXDAOContainerElement.h"

#include <array>

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

using ChildBuilder = std::unique_ptr<QXDAOElement> (*)(const XMLNode& xml, QXDAOContainerElement& holder);

template <typename T>
std::unique_ptr<QXDAOElement> buildPlain(const XMLNode& xml, QXDAOContainerElement& /*holder*/) {
  auto element = std::make_unique<T>();
  element->initWithXML(xml);
  return element;
}

// For the elements that know their holder; the placement rule has checked its class.
template <typename T, typename Holder>
std::unique_ptr<QXDAOElement> buildLinked(const XMLNode& xml, QXDAOContainerElement& holder) {
  auto element = std::make_unique<T>();
  element->initWithXML(xml, static_cast<Holder*>(&holder));
  return element;
}

using HolderTest = bool (*)(const QXDAOContainerElement& holder);

bool anyHolder(const QXDAOContainerElement& /*holder*/) { return true; }

template <typename T>
bool holderIs(const QXDAOContainerElement& holder) {
  return QXDAOElementCast<T>(&holder) != nullptr;
}

struct TagRule {
  std::string_view tag;
  ChildBuilder build;
  HolderTest mayStandIn = anyHolder;
  QXDAORule misplaced = {};  // what it violates elsewhere
};

// The tag table: every element that may stand inside another one, and where. Filled by the
// compiler, so it needs neither a first use nor a lock.
constexpr std::array<TagRule, 12> tagTable = {{
    {C_IF, buildPlain<QXDAOCondition>},
    {C_CHOOSE, buildPlain<QXDAOChoose>},
    {C_WHEN, buildPlain<QXDAOCondition>},
    {C_OTHERWISE, buildPlain<QXDAOCondition>},
    {C_FOREACH, buildPlain<QXDAOForeach>},
    {C_WHERE, buildPlain<QXDAOTrim>},
    {C_SET, buildPlain<QXDAOTrim>},
    {C_TRIM, buildPlain<QXDAOTrim>},
    {C_STEP, buildLinked<QXDAOMethodStep, QXDAOMethod>, holderIs<QXDAOMethod>, QXDAORule::MisplacedStep},
    {C_TRY, buildLinked<QXDAOTry, QXDAOMethod>, holderIs<QXDAOMethod>, QXDAORule::MisplacedTry},
    {C_EXCEPT, buildLinked<QXDAOExcept, QXDAOTry>, holderIs<QXDAOTry>, QXDAORule::MisplacedExcept},
    {C_FORMAT, buildPlain<QXDAOKeyValueFormatter>},
}};

}  // namespace

std::optional<QXDAOElementList> QXDAOContainerElement::takeChildren() { return std::exchange(_children, std::nullopt); }

// A failure from before the walk, such as a select's missing result type, does not end it: the
// walk ends by its own failures only.
void QXDAOContainerElement::processNodes(const XMLNode& xml) {
  QXDAOElementList children;
  children.reserve(xml.childCount());
  for (const XMLNode& node : xml.children()) {
    if (node.kind() == XMLNodeKind::Text) appendText(node, children);
    if (node.kind() == XMLNodeKind::Element && !appendElement(node, children)) return;
  }
  _children = std::move(children);
}

void QXDAOContainerElement::appendText(const XMLNode& node, QXDAOElementList& children) {
  auto text = QXDAOText::elementWithText(spaceNewLineTabBothEndsTrimmed(node.text()));
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
  children.push_back(rule->build(node, *this));
  return !adoptErrorOf(*children.back(), node);
}

}  // namespace korvex
