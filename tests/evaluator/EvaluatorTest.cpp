// Condition expressions: text → tokens, written as "kind:text" lists.
#include <gtest/gtest.h>

#include "korvex/QXDAOEvaluator.h"

namespace korvex {
namespace {

// One letter a kind: n(ame), d(igits), s(tring), o(perator), b(racket).
std::string tokens(std::string_view expression) {
  std::string line;
  for (const QXDAOToken& token : QXDAOEvaluator::buildTokenListWithExpression(expression)) {
    if (!line.empty()) line += ' ';
    line += std::string_view("ndsob")[token.type];
    line.append(1, ':').append(token.text);
  }
  return line;
}

TEST(Evaluator, Tokens) {
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"a > 1", "n:a o:> d:1"},
      {"person.age>=18&&!deleted", "n:person.age o:>= d:18 o:&& o:! n:deleted"},
      {"(a == 'it\\'s') || b[0] <> \"x y\"", "b:( n:a o:== s:'it\\'s' b:) o:|| n:b b:[ d:0 b:] o:<> s:\"x y\""},
      {"-1.5e-3 + .5 - 5.", "o:- d:1.5e-3 o:+ d:.5 o:- d:5."},
      {"$n1 = _x\t*\n\xC3\xA9t\xC3\xA9", "n:$n1 o:= n:_x o:* n:\xC3\xA9t\xC3\xA9"},
      {"1<=2", "d:1 o:<= d:2"},
      {"items[0].name != (a).b", "n:items b:[ d:0 b:] o:. n:name o:!= b:( n:a b:) o:. n:b"},
      {"a===b!==c{1E5<<2>>~x^y?z:w&v|u,t}%2/3",
       "n:a o:=== n:b o:!== n:c b:{ d:1E5 o:<< d:2 o:>> o:~ n:x o:^ n:y o:? n:z o:: n:w o:& n:v o:| n:u o:, n:t b:} "
       "o:% d:2 "
       "o:/ d:3"},
      {"a\v>\f1\r", "n:a o:> d:1"},
      {"aZ . \u00C0", "n:aZ o:. n:\u00C0"},
      {"name not nil", "n:name n:not n:nil"},
  };
  for (const auto& [expression, expected] : cases) EXPECT_EQ(tokens(expression), expected) << expression;
}

TEST(Evaluator, RefusesWhatItCannotTokenise) {
  for (const char* expression : {"", " \t\n", "'open", "\"open'", "'a\\'", "a.", "a..b", "a.1", "1a", "1.2.3", "1e",
                                 "0x10", "a # b", "a @ b", "a;", "a\u00A0> 1", "\u201Cx\u201D == a"}) {
    EXPECT_EQ(tokens(expression), "") << expression;
  }
}

}  // namespace
}  // namespace korvex
