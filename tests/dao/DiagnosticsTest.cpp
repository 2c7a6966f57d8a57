// Every message of the language with its position: definition → message at line:column.
#include <gtest/gtest.h>

#include <algorithm>

#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"
#include "tests/support/ParsedTree.h"

namespace korvex {
namespace {

struct Case {
  const char* xml;  // one definition; its first line is line 1
  const char* message;
  std::size_t line = 1;
  std::size_t column = 1;
};

void check(const std::vector<Case>& cases) {
  for (const auto& [xml, message, line, column] : cases) {
    SCOPED_TRACE(xml);
    const HandBuiltTree tree(parsed(xml));
    std::optional<QXDAOError> error;
    EXPECT_EQ(QXDAOElement::elementWithXML(tree.root(), &error), nullptr);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message(), message);
    EXPECT_EQ(error->xml(), tree.root());
    const std::string before(xml, static_cast<std::size_t>(tree.offsetOf(error->origin)));
    EXPECT_EQ(1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')), line);
    EXPECT_EQ(before.size() - before.rfind('\n'), column);
  }
}

TEST(Diagnostics, RootTagsAndNames) {
  constexpr const char* nameless = "Element name(id attribute) is empty.";
  check({
      {"<sql/>", nameless},
      {"<map id='' result='A'/>", nameless},
      {"<select result='int'>SELECT</select>", nameless},
      {"<query/>", nameless},
      {"<query id='a' arguments=','/>", "Unknown root node type 'query'."},
      {"<Select id='a' result='int'/>", "Unknown root node type 'Select'."},
      {"<SQL id='a'>x</SQL>", "Unknown root node type 'SQL'."},
  });
}

TEST(Diagnostics, Children) {
  constexpr const char* step = "Step should only exist in 'update', 'insert', 'delete' and cannot be nested.";
  constexpr const char* nestedTry = "Try should only exist in 'update', 'insert', 'delete' and cannot be nested.";
  constexpr const char* except = "EXCEPT block should only exist in TRY block.";
  check({
      {"<update id='a'>x\n <select id='b'/></update>", "Unknown element with type select.", 2, 2},
      {"<update id='a'><IF true='a'/><nope/></update>", "Unknown element with type IF.", 1, 16},
      {"<update id='a'>\n<if true='a'>\n<set><step/></set></if></update>", step, 3, 6},
      {"<update id='a'><step><step/></step></update>", step, 1, 22},
      {"<update id='a'><step>\n<try/></step></update>", nestedTry, 2, 1},
      {"<update id='a'>\n <except/></update>", except, 2, 2},
      {"<update id='a'><try><if true='a'><except/></if></try></update>", except, 1, 34},
      {"<update id='a'><if/>\n<nope/></update>", "Condition 'if' is of wrong format.", 1, 16},
  });
}

TEST(Diagnostics, Methods) {
  constexpr const char* arguments = "Cannot resolve argument list of method 'a'.";
  constexpr const char* foreach = "Cannot resolve foreach attribute of method 'a'";
  constexpr const char* result = "Result type of select method 'a' is undefined.";
  constexpr const char* besideTry = "Method 'a' with try block should not have other elements outside try block.";
  check({
      {"<upgrade>ALTER</upgrade>", "Invalid upgrade declaration 'ALTER'."},
      {"<upgrade toVersion='2.5.1'>A<!-- c --><x>B</x></upgrade>", "Invalid upgrade declaration 'AB'."},
      {"<upgrade toVersion='Initial'/>", "Invalid upgrade declaration ''."},
      {"<upgrade toVersion=''/>", "Invalid upgrade declaration ''."},
      {"<upgrade version='1'/>", "Invalid upgrade declaration ''."},
      {"<upgrade id='a' toVersion='2'>U %@</upgrade>", "Invalid upgrade declaration 'U %@'."},
      {"<upgrade toVersion='2' id='a'>U</upgrade>", "Invalid upgrade declaration 'U'."},
      {"<insert id='a' arguments='a,,b'/>", arguments},
      {"<insert id='a' arguments='a,'/>", arguments},
      {"<insert id='a' arguments=' '><nope/></insert>", arguments},
      {"<select id='a'>x</select>", result},
      {"<select id='a' result=''><if true='1'/></select>", result},
      // A failing child replaces the result type's message and its line.
      {"<select id='a'>x\n  <where>\n    <if/></where></select>", "Condition 'if' is of wrong format.", 3, 5},
      // Nothing after the body is checked once there is a message.
      {"<select id='a'>x<nope/></select>", "Unknown element with type nope.", 1, 17},
      {"<select id='a'><step/></select>", result},
      {"<select id='a'><try><except/></try>x</select>", result},
      {"<select id='a' foreach='x'>x</select>", result},
      {"<update id='a'><step/><try><except/></try></update>",
       "Method 'a' with steps should not have other elements outside step block."},
      {"<select id='a' result='int'>x<step/></select>", "Select method 'a' cannot contain steps."},
      {"<update id='%@'><step/>x</update>",
       "Method '%@' with steps should not have other elements outside step block."},
      {"<upgrade toVersion='1'><step/><set/></upgrade>",
       "Method '(null)' with steps should not have other elements outside step block."},
      {"<update id='a'><try><except/></try>x</update>", besideTry},
      {"<select id='a' result='int'><set/>\n<try><except/></try></select>", besideTry},
      {"<update id='a' arguments='ids' foreach='ids'/>", foreach},
      {"<update id='a' arguments='ids,x' foreach='ids.x'/>", foreach},
      {"<update id='a' arguments='ids' foreach='ids. '/>", foreach},
      {"<update id='a' arguments='ids' foreach='ids.i.j'/>", foreach},
      {"<update id='a' foreach='ids.i'/>", foreach},
      {"<update id='a' arguments='ids' foreach='&#9;ids.i'/>", foreach},
  });
}

TEST(Diagnostics, TryAndExcept) {
  constexpr const char* wrongTry = "Try in method 'a' is of wrong format.";
  constexpr const char* wrongExcept = "Except in method 'a' is of wrong format.";
  check({
      {"<update id='a'>\n <try x=''><nope/></try></update>", wrongTry, 2, 2},
      {"<update id='a'><try>x</try></update>", wrongTry, 1, 16},
      {"<update id='a'><try x='' y=''><except/></try></update>", wrongTry, 1, 16},
      {"<update id='a'><try/></update>", wrongTry, 1, 16},
      {"<update id='a'><try>x<except/>y</try></update>", wrongTry, 1, 16},
      {"<upgrade toVersion='1'><try>x</try></upgrade>", "Try in method '(null)' is of wrong format.", 1, 24},
      {"<update id='a'><try>x<except/>\n<except><nope/></except></try></update>",
       "Try in method 'a' contains too many except block.", 2, 1},
      {"<update id='a'><try>x<except/><except x=''/></try></update>", wrongExcept, 1, 31},
      {"<update id='a'><try><except x=''/></try></update>", wrongExcept, 1, 21},
      // The second except block is refused while the first one, with its content, is alive.
      {"<update id='a'><try>x<except>y<if true='a'>z</if></except>\n<except/></try></update>",
       "Try in method 'a' contains too many except block.", 2, 1},
      {"<update id='a'><try>x<except>\n<nope/></except></try></update>", "Unknown element with type nope.", 2, 1},
  });
}

TEST(Diagnostics, Fragments) {
  constexpr const char* choose = "Condition 'choose' should only contain nodes as 'when' and 'otherwise'.";
  constexpr const char* parameters = "Foreach parameter list is of wrong format.";
  constexpr const char* content = "Foreach should only contain iterator expression as text.";
  const auto in = [](const std::string& fragment) { return "<update id='a'>" + fragment + "</update>"; };
  struct Fragment {
    const char* xml;
    const char* message;
    std::size_t line = 1;
    std::size_t column = 16;
  };
  for (const auto& [xml, message, line, column] : std::vector<Fragment>{
           {"<if/>", "Condition 'if' is of wrong format."},
           {"<if test='a'><nope/></if>", "Condition 'if' is of wrong format."},
           {"<if true='a' false='b'/>", "Condition 'if' is of wrong format."},
           {"<if true=' \t'/>", "Condition 'if' is of wrong format."},
           {"<when true=\"'open\"/>", "Condition 'when' is of wrong format."},
           {"<otherwise true='a'/>", "Condition 'otherwise' is of wrong format."},
           {"<choose x='a'><nope/></choose>", "Condition 'choose' is of wrong format."},
           {"<choose><when true='a'/>text</choose>", choose},
           {"<choose><when true='a'>x</when><!-- c -->\n <if true='a'/></choose>", choose, 2, 2},
           {"<choose>text<when true='a'/></choose>", choose},
           {"<choose>\n<otherwise/>\n<otherwise/></choose>", choose, 2, 1},
           {"<choose><otherwise/><when true='a'/></choose>", choose, 1, 24},
           {"<choose><when/><if true='a'/></choose>", "Condition 'when' is of wrong format.", 1, 24},
           {"<foreach collection='c'/>", parameters},
           {"<foreach item='' collection='c'/>", parameters},
           {"<foreach item='i' collection=''/>", parameters},
           {"<foreach item='i' collection='c' index='x'><if/></foreach>", parameters},
           {"<foreach item='i' collection='c'>x\n<if true='a'/></foreach>", content, 2, 1},
           {"<foreach item='i' collection='c'><?pi x?></foreach>", content},
           {"<trim prefixOverrides='a'><nope/></trim>", "'trim' is of wrong format."},
           {"<trim prefix='' suffixOverrides=','/>", "'trim' is of wrong format."},
           {"<trim prefix='WHERE' prefixOverrides='' suffixOverrides=''/>", "'trim' is of wrong format."},
           {"<format prefix='p' pairs='q'/>", "'format' is of wrong format."},
           {"<format prefix='p' pairs='q' join=''/>", "'format' is of wrong format."},
           {"<format prefix='' pairs='q' join='j'/>", "'format' is of wrong format."},
           {"<format prefix='p' join='j'/>", "'format' is of wrong format."},
           {"<where>x<set>y\n  <trim/></set></where>", "'trim' is of wrong format.", 2, 3},
       }) {
    check({{in(xml).c_str(), message, line, column}});
  }
}

TEST(Diagnostics, SqlBlocksAndConstants) {
  check({
      {"<sql id='t'>x</sql>", "Sql block name cannot be 'T'."},
      {"<sql id='T'><if/></sql>", "Sql block name cannot be 'T'."},
      {"<sql id='cols'>a,\n <if true='a'>b</if>\n<if/></sql>", "Sql block 'cols' is of wrong format.", 2, 2},
      {"<sql id='cols'>a<?pi?></sql>", "Sql block 'cols' is of wrong format."},
      {"<const/>", "Invalid constant declaration ''."},
      {"<const A='1' B='2'/>", "Invalid constant declaration ''."},
      {"<const A='1'>x<b>y</b></const>", "Invalid constant declaration 'xy'."},
      {"<const A='1'><!-- c --></const>", "Invalid constant declaration ''."},
  });
}

TEST(Diagnostics, ObjectMapping) {
  constexpr const char* map = "Map 'm' is of wrong format.";
  constexpr const char* crypt = "Invalid crypt property declaration ''.";
  check({
      {"<map/>", "Element name(id attribute) is empty."},
      {"<map id='m'/>", "Result type of map 'm' cannot be nil."},
      {"<map id='m' result=''><nope/></map>", "Result type of map 'm' cannot be nil."},
      {"<map id='m' result='A'>\n<result property='p' column='c'/>\n<result property='p'/></map>", map, 3, 1},
      {"<map id='m' result='A'><result property='' column='c'/></map>", map, 1, 24},
      {"<map id='m' result='A'><result property='p' column=''/></map>", map, 1, 24},
      {"<map id='m' result='A'><column property='p' column='c'/></map>", map, 1, 24},
      {"<map id='m' result='A'>\ntext</map>", map},
      {"<map id='m' result='A'><?pi?></map>", map},
      {"<crypt class='A'/>", crypt},
      {"<crypt class='A' property='p' id='x'/>", crypt},
      {"<crypt class='A' name='p'/>", crypt},
      {"<crypt class='' property='p'/>", crypt},
      {"<crypt class='A' property='p'><!-- c --></crypt>", crypt},
      {"<crypt class='A' property='p'>x</crypt>", "Invalid crypt property declaration 'x'."},
      {"<pack properties='a,b'/>", "Invalid column in pack definition."},
      {"<pack as='  ' properties='a,b'/>", "Invalid column in pack definition."},
      {"<pack/>", "Empty property list for column '(null)'."},
      {"<pack as='  ' properties=''/>", "Empty property list for column ''."},
      {"<pack as=' info ' properties='nickname'/>", "You must pack at least two properties for column 'info'."},
      {"<pack as='info' properties=' '/>", "You must pack at least two properties for column 'info'."},
  });
}

}  // namespace
}  // namespace korvex
