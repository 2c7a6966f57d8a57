// The condition evaluator as the mapping layer needs it: text in, tokens out.
//
// The definition lives in a library target of its own (korvex_evaluator). An engine with its own
// expression language defines QXDAOEvaluator::buildTokenListWithExpression itself and links that
// instead; a definition is valid when the linked evaluator can tokenise its conditions.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "korvex/Export.h"

namespace korvex {

enum QXDAOTokenType : std::uint64_t {
  QXDAOTokenTypeName = 0,      // item, person.age, $1; a dot joins two names
  QXDAOTokenTypeNumber = 1,    // 12, 1.5, .5, 2e10
  QXDAOTokenTypeString = 2,    // 'a' or "a"; a backslash keeps the next character from closing it
  QXDAOTokenTypeOperator = 3,  // the longest of the known ones, such as >= or &&, or the dot of a[0].b
  QXDAOTokenTypeBracket = 4,   // one of ( ) [ ] { }
};

struct QXDAOToken {
  QXDAOTokenType type = QXDAOTokenTypeName;
  std::string_view text;  // as written, a string with its quotes: a piece of the expression, or constant

  bool operator==(const QXDAOToken&) const = default;
};

using QXDAOTokenList = std::vector<QXDAOToken>;

class KORVEX_EXPORT QXDAOEvaluator {
 public:
  // The tokens of the expression in order, valid as long as the expression is; empty when it holds none or cannot be
  // tokenised (an unclosed string, a number that runs into a name, an unknown character, a name that holds a no-break
  // space or a curly quote). Only tokens are
  // recognised: whether they form an expression is for the evaluator that runs them. Any thread.
  [[nodiscard]] static QXDAOTokenList buildTokenListWithExpression(std::string_view expression);
};

}  // namespace korvex
