// The condition evaluator as far as the mapping layer needs it: an expression in, tokens out.
//
// It is defined in a library of its own, korvex_evaluator. An engine that has its own expression
// language defines QXDAOEvaluator::buildTokenListWithExpression and links that instead. A condition is
// valid if the linked evaluator returns at least one token for its expression.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
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
  std::string_view text;  // as written; a string keeps its quotes

  bool operator==(const QXDAOToken&) const = default;
};

// A list of tokens that needs memory of its own only if it is long.
class QXDAOTokenList {
 public:
  QXDAOTokenList() = default;
  QXDAOTokenList(std::initializer_list<QXDAOToken> tokens) {
    for (const QXDAOToken& token : tokens) push_back(token);
  }

  void push_back(const QXDAOToken& token) {
    if (_size < _few.size()) {
      _few[_size] = token;
    } else {
      if (_many.empty()) _many.assign(_few.begin(), _few.end());
      _many.push_back(token);
    }
    ++_size;
  }
  [[nodiscard]] const QXDAOToken* data() const { return _many.empty() ? _few.data() : _many.data(); }
  [[nodiscard]] std::size_t size() const { return _size; }
  [[nodiscard]] bool empty() const { return _size == 0; }
  // The number of tokens that there is memory for.
  [[nodiscard]] std::size_t capacity() const { return _many.empty() ? _few.size() : _many.capacity(); }
  [[nodiscard]] const QXDAOToken* begin() const { return data(); }
  [[nodiscard]] const QXDAOToken* end() const { return data() + _size; }

 private:
  std::array<QXDAOToken, 16> _few;
  std::vector<QXDAOToken> _many;  // all of them, once they are too many
  std::size_t _size = 0;
};

class KORVEX_EXPORT QXDAOEvaluator {
 public:
  // The tokens of the expression in order; none if the expression has none or cannot be tokenised (an
  // unclosed string, a number that runs into a name, an unknown character, in a name one that cannot be
  // seen or is taken for another, or bytes that are not UTF-8). Memory grows with the tokens. Whether
  // the tokens form an expression is up to the evaluator that runs them. Called on any thread, on several
  // at once.
  //
  // The text of a token is a piece of the expression, a constant, or text of the evaluator's own that
  // stays valid until it is called again on the same thread. QXDAOCondition copies what it is given.
  [[nodiscard]] static QXDAOTokenList buildTokenListWithExpression(std::string_view expression);
};

}  // namespace korvex
