#include "korvex/QXDAOCondition.h"

#include <array>

#include "dao/core/Building.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

struct ConditionTag {
  std::string_view tag;
  QXDAOConditionType type;
};

constexpr std::array<ConditionTag, 3> conditionTags = {{
    {C_IF, QXDAOConditionTypeIf},
    {C_WHEN, QXDAOConditionTypeWhen},
    {C_OTHERWISE, QXDAOConditionTypeOtherwise},
}};

QXDAOConditionType typeOfTag(OptionalStringView tag) {
  const ConditionTag* row = rowWith(conditionTags, &ConditionTag::tag, tag);
  return row ? row->type : QXDAOConditionTypeIf;
}

}  // namespace

void QXDAOCondition::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  _type = typeOfTag(xml.name());
  if (!readCondition(xml)) {
    setError(QXDAORule::ConditionFormat, xml.name());
    return;
  }
  processNodes(xml);
}

// An otherwise has no attribute; the others have exactly the attribute with their expression.
bool QXDAOCondition::readCondition(const XMLNode& xml) {
  if (_type == QXDAOConditionTypeOtherwise) return !xml.hasAttributes();
  const XMLAttribute attribute = xml.onlyAttribute();
  return attribute && readExpression(attribute);
}

bool QXDAOCondition::readExpression(const XMLAttribute& attribute) {
  const OptionalStringView attributeName = attribute.name();
  if (attributeName != C_TRUE && attributeName != C_FALSE) return false;
  _evaluateAsTrue = attributeName == C_TRUE;
  setExpression(spaceNewLineTabBothEndsTrimmed(attribute.stringValue()));
  setTokenList(QXDAOEvaluator::buildTokenListWithExpression(expression().value_or(std::string_view())));
  return !tokenList()->empty();
}

void QXDAOCondition::setTokenList(std::optional<std::span<const QXDAOToken>> tokens) {
  _tokenList = Building::texts(Building::memoryOf(*this), tokens);
}

}  // namespace korvex
