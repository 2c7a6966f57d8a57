#pragma once

#include <cstdint>
#include <optional>
#include <utility>

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

// <if>, <when> and <otherwise>: content that applies under a condition. The attribute "true" or
// "false" of if and when holds the expression and says which outcome applies.
class KORVEX_EXPORT QXDAOCondition final : public QXDAOContainerElement {
 public:
  static constexpr QXDAOElementKind Kind = QXDAOElementKindCondition;
  QXDAOCondition() : QXDAOContainerElement(Kind) {}

  void initWithXML(const XMLNode& xml);

  [[nodiscard]] QXDAOConditionType type() const { return _type; }
  void setType(QXDAOConditionType type) { _type = type; }
  // True when the content applies if the expression holds, false when it applies if it does not.
  [[nodiscard]] bool evaluateAsTrue() const { return _evaluateAsTrue; }
  void setEvaluateAsTrue(bool evaluateAsTrue) { _evaluateAsTrue = evaluateAsTrue; }
  // The trimmed expression; absent for otherwise. The tokens may be pieces of it, so replacing it
  // leaves them absent.
  [[nodiscard]] OptionalStringView expression() const { return _expression.view(); }
  void setExpression(OptionalStringView expression) {
    _tokenList.reset();
    _expression = CompactString(expression);
  }
  // The evaluator's tokens, never empty in a finished element, where they are pieces of the
  // expression; absent for otherwise. Whoever sets others keeps their texts alive.
  [[nodiscard]] const std::optional<QXDAOTokenList>& tokenList() const { return _tokenList; }
  void setTokenList(std::optional<QXDAOTokenList> tokens) { _tokenList = std::move(tokens); }

 private:
  [[nodiscard]] bool readCondition(const XMLNode& xml);
  [[nodiscard]] bool readExpression(const XMLAttribute& attribute);

  QXDAOConditionType _type : 8 = QXDAOConditionTypeIf;
  bool _evaluateAsTrue = false;
  CompactString _expression;
  std::optional<QXDAOTokenList> _tokenList;
};

}  // namespace korvex
