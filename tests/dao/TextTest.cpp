// List references in SQL text: input → expression, through both ways of building a text.
#include <gtest/gtest.h>

#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOText.h"
#include "tests/support/HandBuiltTree.h"

namespace korvex {
namespace {

std::string expanded(std::string_view input) {
  QXDAOText text;
  text.setName("of a former life");
  text.initWithText(input);
  EXPECT_EQ(text.speedyList(), nullptr);
  EXPECT_EQ(text.speedyStatus(), QXDAOTextSpeedyStatusNone);
  EXPECT_EQ(text.name(), std::nullopt);
  EXPECT_EQ(QXDAOText::expandedLength(input), text.expression()->size());
  return std::string(text.expression().value());
}

struct TextCase {
  const char* input;
  const char* expression;
};

void checkTexts(const std::vector<TextCase>& cases) {
  for (const auto& [input, expression] : cases) {
    SCOPED_TRACE(input);
    EXPECT_EQ(expanded(input), expression);
  }
}

TEST(Text, ExpandsListReferences) {
  checkTexts({
      {"SELECT name FROM t WHERE id IN (%{'*', a, b, c})", "SELECT name FROM t WHERE id IN (a, b, c)"},
      {"INSERT INTO t (%{'*', id, name}) VALUES (%{'?', id, name})", "INSERT INTO t (id, name) VALUES (?, ?)"},
      {"SELECT %{'t.*', id, name} FROM t", "SELECT t.id, t.name FROM t"},
      {"%{'*=*', a,b}", "a=a, b=b"},
      {"%{'{*}', a, b}", "{a}, {b}"},
      {"%{'(*)', , b}", "(), (b)"},
      {"%{'a*',}x", "ax"},
      {"x IN (%{'*'}) OR y = 1", "x IN () OR y = 1"},
      {"%{ '*' junk , a }", "a"},
      {"%{'*', a}%{'*', b}", "ab"},
      {"%{'*', a} AND %{'*', b}", "a AND b"},
      {"%{'*,*', a}", "a,a"},
      {"%{'*', \t\n a b \n\t}", "a b"},
      {"%{'*', \r a}", "\r a"},
      {"%{'*', %a, %}", "%a, %"},
      {"%{'', a, b}", ", "},
      {"SELECT %{'(*)', t.*, b}", "SELECT (t.*), (b)"},
      {"   %{'*', a}   ", "   a   "},
      {"%'x' %{'*', a}", "%'x' a"},
      {"a IN (%{'*', 1, 2}) AND b = '%{x}'", "a IN (1, 2) AND b = '%{x}'"},
  });
}

TEST(Text, LeavesOtherTextAlone) {
  for (const char* text :
       {"", "name LIKE '%abc%'", "%x{'*', a, b}", "%,{'*', a}", "%'{'*', a}", "% {'*', a}", "{'*', a, b}",
        "SELECT %{'*', a, b FROM t", "%{'*, a, b}", "%{a, b, c}", "%{'*', a", "100 %, 50 }%"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(expanded(text), text);
  }
}

// A "%" survives another "%" and a "{" that opens nothing; what an opening, an abandoned or a
// closed reference leaves behind affects the text after it.
TEST(Text, StateThatOutlivesAReference) {
  checkTexts({
      {"%%{'*', a}", "%a"},
      {"%{'*', a}{'*', b}", "a{'*', b}"},
      {"%{'*', a}, b}", "a, b}"},
      {"%{'*', 'a', b}", "a, a"},
      {"%{'*', {a}, b}", "%{'*',, b}"},
      {"a = '%{x}' AND b IN (%{'*', 1, 2})", "a = ' AND b IN (%{,  AND b IN (%{)"},
      // An expansion leaves an open format string open: nothing can open a reference after it.
      {"%{'*', a'} %{'*', b}", "a' %{'*', b}"},
      {"%{'*', 'x} %{{'+', c}", "'x %{{'+', c}"},
      // The next reference needs a format string of its own.
      {"%{'*', a}%{, b}", "a%{, b}"},
      // While a reference is open its "%" stays pending, so a bare "{" opens another one.
      {"%{x {'*', a}", "%{xa"},
      {"%{'<*>' , q{, a}", "%{'<*>' , <a>"},
      // Opening forgets the commas before it.
      {"%{'*', a, b%{, c}", "%{'*', a, bc"},
      {"%{'*', a, b%{c}|", "%{'*', a, b|"},
  });
}

// The threshold of 8 and the unit before "{" are counted in UTF-16 units.
TEST(Text, CountsUTF16Units) {
  checkTexts({
      {"%{'*'}", "%{'*'}"},
      {"%{'*'}x", "%{'*'}x"},                          // 7 units
      {"%{'*',p}", "p"},                               // 8 units
      {"%{'*'}\xC3\xA9", "%{'*'}\xC3\xA9"},            // é: 8 bytes, 7 units
      {"%{'*'}\xC3\xA9\xC3\xA9", "\xC3\xA9\xC3\xA9"},  // 8 units
      {"%{'*'}\xE2\x82\xAC", "%{'*'}\xE2\x82\xAC"},    // €: 9 bytes, 7 units
      {"%{'*'}\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},  // 😀: 8 units
      {"%{'*'}\xF0\x9F\x98", "\xF0\x9F\x98"},          // broken UTF-8: a unit a byte
      {"%{x\xC3\xA9{'*', a}", "%{xa"},                 // one unit, two bytes, removed
      {"%{x\xE2\x82\xAC{'*', a}", "%{xa"},             // one unit, three bytes
      {"%{x\xF0\x9F\x98\x80{'*', a}",
       "%{x\xEF\xBF\xBD"
       "a"},  // half of a pair: U+FFFD
      {"%{'\xF0\x9F\x98\x80*', \xC3\xA9, b}",
       "\xF0\x9F\x98\x80\xC3\xA9, \xF0\x9F\x98\x80"
       "b"},
  });
}

TEST(Text, TrimsNodesOnly) {
  const HandBuiltTree tree(TreeNode::text(" \n\t\r SELECT %{'*', a, b} \n"));
  QXDAOText text;
  text.initWithXML(tree.root());
  EXPECT_EQ(text.expression(), "\r SELECT a, b");

  const HandBuiltTree element(
      TreeNode::element("a", {}, {TreeNode::text(" b"), TreeNode::element("c", {}, {TreeNode::text("d ")})}));
  text.initWithXML(element.root());
  EXPECT_EQ(text.expression(), "bd");

  const HandBuiltTree silent(TreeNode{XMLNodeKind::Text, std::nullopt, std::nullopt, {}, {}});
  text.initWithXML(silent.root());
  EXPECT_EQ(text.expression(), std::nullopt);
  text.initWithText(std::nullopt);
  EXPECT_EQ(text.expression(), std::nullopt);
}

// Long texts take the same rules as short ones, wherever the blocks between references lie.
TEST(Text, LongTextWithManyReferences) {
  std::string input;
  std::string wanted;
  for (int count = 0; count < 2000; ++count) {
    input += std::string(static_cast<std::size_t>(count % 97), 'x') + "%{'<*>', a, b}'{,}";
    wanted += std::string(static_cast<std::size_t>(count % 97), 'x') + "<a>, <b>'{,}";
  }
  EXPECT_EQ(expanded(input), wanted);
}

}  // namespace
}  // namespace korvex
