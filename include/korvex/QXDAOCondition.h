#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "korvex/CompactList.h"
#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/QXDAOEvaluator.h"
#include "korvex/XMLNode.h"

namespace korvex {

enum QXDAOConditionType : std::uint64_t {
  QXDAOConditionTypeIf = 0,
  QXDAOConditionTypeWhen = 1,
  QXDAOConditionTypeOtherwise = 2,
};

// <if>, <when> and <otherwise>: content that applies under a condition. <if> and <when> have exactly
// one attribute, "true" or "false"; its value is the expression and its name the outcome under which
// the content applies. <otherwise> has no attribute.
class KORVEX_EXPORT QXDAOCondition final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindCondition;
  QXDAOCondition() : QXDAOContainerElement(Kind) {}

  // Reads the attribute, tokenises the expression and walks the children. On failure the properties
  // that were read before it keep their values.
  void initWithXML(const XMLNode& xml);

  [[nodiscard]] QXDAOConditionType type() const { return _type; }
  void setType(QXDAOConditionType type) { _type = type; }
  // True if the content applies when the expression is true, false if it applies when it is false.
  // False for <otherwise>.
  [[nodiscard]] bool evaluateAsTrue() const { return _evaluateAsTrue; }
  void setEvaluateAsTrue(bool evaluateAsTrue) { _evaluateAsTrue = evaluateAsTrue; }
  // Without spaces, tabs and line feeds at both ends; absent for <otherwise>. Setting it does not change the tokens.
  [[nodiscard]] OptionalStringView expression() const { return _expression.view(); }
  void setExpression(OptionalStringView expression) { _expression = kept(expression); }
  // The tokens of the expression: not empty in a finished <if> or <when>, absent for <otherwise>. The element owns
  // copies of their texts, which are valid until other tokens are set or the element is destroyed.
  [[nodiscard]] const std::optional<std::span<const QXDAOToken>>& tokenList() const { return _tokenList.view(); }
  void setTokenList(std::optional<std::span<const QXDAOToken>> tokens);

 private:
  [[nodiscard]] bool readCondition(const XMLNode& xml);
  [[nodiscard]] bool readExpression(const XMLAttribute& attribute);

  QXDAOConditionType _type = QXDAOConditionTypeIf;
  bool _evaluateAsTrue = false;
  CompactString _expression;
  CompactList<QXDAOToken> _tokenList;
};

}  // namespace korvex
