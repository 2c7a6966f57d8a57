// Condition expressions: text → tokens, written as "kind:text" lists.
#include <gtest/gtest.h>

#include "korvex/QXDAOEvaluator.h"

namespace korvex {
namespace {

// One letter per kind: n(ame), d(igits), s(tring), o(perator), b(racket).
std::string tokens(std::string_view expression) {
  std::string line;
  for (const QXDAOToken& token : QXDAOEvaluator::buildTokenListWithExpression(expression)) {
    if (!line.empty()) line += ' ';
    line += std::string_view("ndsob")[token.type];
    line.append(1, ':').append(token.text);
  }
  return line;
}

// Invisible characters and lookalikes are rejected outside strings; letters of any script form names.
TEST(Evaluator, RefusesLookalikes) {
  for (const char* character :
       {"\u00A0", "\u202F", "\u3000",   "\u2003",       "\u200B",          "\u200D", "\u2060", "\uFEFF",
        "\u00AD", "\u202E", "\u2028",   "\u2013",       "\u2212",          "\u2265", "\u2260", "\u00D7",
        "\u00AB", "\u2019", "\u201C",   "\uFF1D",       "\uFF41",          "\uFF08", "\u3164", "\U000E0061",
        "\x80",   "\xC3",   "\xC0\xAF", "\xED\xA0\x80", "\xF5\x80\x80\x80"}) {
    for (const std::string& expression :
         {character + std::string("a"), "a" + std::string(character), "a " + std::string(character) + " 1"}) {
      EXPECT_EQ(tokens(expression), "") << expression;
    }
    const std::string text = "'" + std::string(character) + "'";
    EXPECT_EQ(tokens(text), "s:" + text);
  }
  for (const char* end : {"\u00F7", "\u180B", "\u2BFF", "\uFE20", "\uFFA0", "\xE0\x9F\xBF", "\xF4\x90\x80\x80"}) {
    EXPECT_EQ(tokens(end), "") << end;  // of a range, or of what UTF-8 has a form for
  }
  for (const char* name : {"größe", "имя", "名前", "α", "नाम", "\U00020000", "\uFE10", "\u2C00", "é.ñ"}) {
    EXPECT_EQ(tokens(name), std::string("n:") + name);
  }
}

TEST(Evaluator, MemoryGrowsWithTokens) {
  const std::string expression = "a" + std::string(1'000'000, ' ') + "'" + std::string(1000, ' ') + "'";
  EXPECT_LE(QXDAOEvaluator::buildTokenListWithExpression(expression).capacity(), 16U);
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
