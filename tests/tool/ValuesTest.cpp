// What single attributes and contents become: definition → one value of its element's JSON.
#include <gtest/gtest.h>

#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "tool/ElementJson.h"

namespace korvex {
namespace {

struct ValueCase {
  std::string xml;
  const char* pointer;  // an RFC 6901 JSON pointer into the element
  const char* value;    // JSON
};

void check(const std::vector<ValueCase>& cases, const std::string& before = "", const std::string& after = "") {
  for (const auto& [xml, pointer, value] : cases) {
    SCOPED_TRACE(xml);
    const auto result = Document::fromBytes("<d>" + before + xml + after + "</d>");
    ASSERT_TRUE(result.document);
    const std::vector<Definition> definitions = loadDefinitions(*result.document);
    ASSERT_TRUE(definitions.at(0).element) << definitions[0].error->message();
    EXPECT_EQ(elementJson(*definitions[0].element).at(Json::json_pointer(pointer)), Json::parse(value));
  }
}

TEST(Values, OfDefinitions) {
  check({
      {"<sql id='T1'/>", "/name", R"("T1")"},
      {"<sql id='tt'> a <!-- c -->\n%{'*', b} <![CDATA[<c>]]></sql>", "/text/expression", R"("ab <c>")"},
      {"<const A=' 20 '/>", "/text/expression", R"(" 20 ")"},
      {"<crypt class=' P ' property=' p '/>", "/className", R"(" P ")"},
      {"<crypt property=' p ' class='P'/>", "/propertyName", R"(" p ")"},
      {"<map id='m' result=' P '/>", "/resultClass", R"(" P ")"},
      {"<map id='m' result='P'><!-- c --></map>", "/columnPropertyMap", "{}"},
      {"<map id='m' result='P'><result column='c' property='a' x='y'/><result column='c' property=' b '/></map>",
       "/columnPropertyMap", R"({"c": " b "})"},
      {"<map id='m' result='P'><result column='c' property='a'/><result column='C' property='a'><x/></result></map>",
       "/columnPropertyMap", R"({"C": "a", "c": "a"})"},
      {"<pack as=' info ' properties='a, b'/>", "/column", R"("info")"},
      {"<pack as='&#9;' properties='a, b'/>", "/column", R"("\t")"},
      {"<pack as='i' properties='nickname, age&#9;,'/>", "/propertyList", R"(["nickname", "age\t", ""])"},
      {"<pack as='i' properties=',,a,a'/>", "/propertyList", R"(["", "", "a", "a"])"},
      {"<pack as='i' properties='a,b' crypt=' TRUE '/>", "/crypted", "true"},
      {"<pack as='i' properties='a,b' crypt='yes'/>", "/crypted", "false"},
      {"<pack as='i' properties='a,b' crypt='1'/>", "/crypted", "false"},
      {"<pack as='i' properties='a,b' crypt=''/>", "/crypted", "false"},
  });
}

TEST(Values, OfChildren) {
  check(
      {
          {"<if true='&#10; a &#9;'/>", "/children/0/expression", R"("a")"},
          {"<if false='a'/>", "/children/0/evaluateAsTrue", "false"},
          {"<when true='a'>x</when>", "/children/0/type", R"("QXDAOConditionTypeWhen")"},
          {"<choose/>", "/children/0/children", "[]"},
          {"<foreach item=' i ' collection='c'/>", "/children/0/item", R"(" i ")"},
          {"<foreach item='i' collection='c' open=' ('/>", "/children/0/open", R"(" (")"},
          {"<foreach item='i' collection='c' reverse='YES'/>", "/children/0/reverse", "true"},
          {"<foreach item='i' collection='c' reverse='no'/>", "/children/0/reverse", "false"},
          {"<foreach item='i' collection='c'>\n a,<!-- c --> b %{'*', c, d}\n</foreach>", "/children/0/text/expression",
           R"("a, b c, d")"},
          {"<trim prefix=' W ' prefixOverrides='AND | OR'/>", "/children/0/operationName", R"(" W ")"},
          {"<trim prefix='W' prefixOverrides='AND | OR'/>", "/children/0/prefixOverrides", R"(["AND ", " OR"])"},
          {"<trim prefix='W' prefixOverrides='AND | OR'/>", "/children/0/suffixOverrides", "[]"},
          {"<trim prefix='S' prefixOverrides='' suffixOverrides='a||b|'/>", "/children/0/prefixOverrides", R"([""])"},
          {"<trim prefix='S' suffixOverrides='a||b|'/>", "/children/0/suffixOverrides", R"(["a", "", "b", ""])"},
          {"<where prefix='x' prefixOverrides='y'/>", "/children/0/prefixOverrides",
           R"(["AND ", "OR ", "and ", "or "])"},
          {"<where onVoid='ignoreAfter'/>", "/children/0/onVoid", R"("QXDAOTrimOnVoidTypeIgnoreAfter")"},
          {"<set onVoid='Quit'/>", "/children/0/onVoid", R"("QXDAOTrimOnVoidTypeNone")"},
          {"<format prefix=' p ' pairs=' ' join=' j '>x<y/></format>", "/children/0/prefix", R"(" p ")"},
          {"<format prefix='p' pairs=' ' join=' j '/>", "/children/0/pairs", R"(" ")"},
          {"<format prefix='p' pairs=' ' join=' j '/>", "/children/0/join", R"(" j ")"},
      },
      "<update id='u'>", "</update>");
}

}  // namespace
}  // namespace korvex
