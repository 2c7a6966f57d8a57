#include "korvex/QXDAOCondition.h"

#include <array>
#include <numeric>
#include <utility>

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

// Copies the texts of the tokens into one string and points the tokens at them.
CompactString withOwnTexts(QXDAOTokenList& tokens) {
  const auto addLength = [](std::size_t sum, const QXDAOToken& token) { return sum + token.text.size(); };
  const std::size_t length = std::accumulate(tokens.begin(), tokens.end(), std::size_t{0}, addLength);
  return CompactString::filled(length, [&tokens](char* place) {
    for (QXDAOToken& token : tokens) {
      const std::size_t size = token.text.copy(place, token.text.size());
      token.text = {place, size};
      place += size;
    }
  });
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

// An otherwise has no attribute, the others have exactly the one that holds their expression.
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
  return !_tokenList->empty();
}

void QXDAOCondition::setTokenList(std::optional<QXDAOTokenList> tokens) {
  CompactString texts;
  if (tokens) texts = withOwnTexts(*tokens);
  _tokenList = std::move(tokens);
  _tokenTexts = std::move(texts);
}

}  // namespace korvex
