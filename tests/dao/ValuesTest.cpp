// Attributes and contents as values: definition → one line with every value of its element.
#include <gtest/gtest.h>

#include "korvex/QXDAOChoose.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOConst.h"
#include "korvex/QXDAOCryptProperty.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "korvex/QXDAOMap.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOMethodArgument.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOSqlBlock.h"
#include "korvex/QXDAOText.h"
#include "korvex/QXDAOTrim.h"
#include "tests/support/ParsedTree.h"

namespace korvex {
namespace {

// A line of "key='value'", with the key alone for a true flag and nothing for what is absent or false.
class Line {
 public:
  explicit Line(std::string begin) : _line(std::move(begin)) {}

  Line& text(std::string_view key, OptionalStringView value) {
    if (value) _line.append(" ").append(key).append("='").append(*value).append("'");
    return *this;
  }
  Line& flag(std::string_view key, bool set) {
    if (set) _line.append(" ").append(key);
    return *this;
  }
  template <typename List, typename Piece>
  Line& list(std::string_view key, const List& items, Piece piece) {
    std::string joined;
    for (const auto& item : items) joined.append(&item == &*items.begin() ? "" : "|").append(piece(item));
    return text(key, joined);
  }
  [[nodiscard]] std::string told() const { return _line; }

 private:
  std::string _line;
};

std::string_view itself(std::string_view text) { return text; }

std::string told(const QXDAOMethod& method) {
  const bool select = method.operation() == QXDAOOperationSelect;
  Line line(std::to_string(method.operation()));
  line.text("name", method.name()).text("type", method.resultTypeName());
  if (select) line.text(method.resultArrayed() ? "list" : "row", std::to_string(method.resultType()));
  line.flag("profile", method._profile).flag("parallel", method.parallel()).flag("table", method.assignedTable());
  line.flag("foreach", method.foreach ()).flag("resumable", method.foreachResumable());
  line.text("item", method.foreachItemName()).text("collection", method.foreachCollection());
  line.flag("steped", method.steped()).flag("try", method.tryBlock());
  if (method.operation() == QXDAOOperationUpgrade) line.text("version", std::to_string(method.toVersion()));
  return line
      .list("arguments", *method.arguments(),
            [](const auto& argument) { return std::string(*argument.name()).append(argument.notNull() ? "!" : ""); })
      .told();
}

std::string told(const QXDAOElement& element) {
  if (const auto* sql = QXDAOElementCast<QXDAOSqlBlock>(&element)) {
    return Line("sql").text("name", sql->name()).text("text", sql->text()->expression()).told();
  }
  if (const auto* constant = QXDAOElementCast<QXDAOConst>(&element)) {
    return Line("const").text("name", constant->name()).text("text", constant->text()->expression()).told();
  }
  if (const auto* crypt = QXDAOElementCast<QXDAOCryptProperty>(&element)) {
    return Line("crypt").text("class", crypt->className()).text("property", crypt->propertyName()).told();
  }
  if (const auto* map = QXDAOElementCast<QXDAOMap>(&element)) {
    return Line("map")
        .text("name", map->name())
        .text("class", map->resultClass())
        .list("columns", *map->columnPropertyMap(),
              [](const QXDAOColumn& entry) { return std::string(entry.column) + "=" + std::string(entry.property); })
        .told();
  }
  if (const auto* pack = QXDAOElementCast<QXDAOPack>(&element)) {
    return Line("pack")
        .text("column", pack->column())
        .list("properties", *pack->propertyList(), itself)
        .flag("crypted", pack->crypted())
        .told();
  }
  if (const auto* condition = QXDAOElementCast<QXDAOCondition>(&element)) {
    return Line(std::to_string(condition->type()))
        .text(condition->evaluateAsTrue() ? "true" : "false", condition->expression())
        .text("tokens", condition->tokenList() ? std::to_string(condition->tokenList()->size()) : OptionalString())
        .told();
  }
  if (const auto* loop = QXDAOElementCast<QXDAOForeach>(&element)) {
    Line line("foreach");
    line.text("item", loop->item()).text("collection", loop->collection()).text("open", loop->open());
    line.text("separator", loop->separator()).text("close", loop->close()).flag("reverse", loop->reverse());
    return line.text("text", loop->text()->expression()).told();
  }
  if (const auto* trim = QXDAOElementCast<QXDAOTrim>(&element)) {
    return Line(std::to_string(trim->onVoid()))
        .text("name", trim->operationName())
        .list("prefix", trim->prefixOverrides(), itself)
        .list("suffix", trim->suffixOverrides(), itself)
        .told();
  }
  if (const auto* format = QXDAOElementCast<QXDAOKeyValueFormatter>(&element)) {
    Line line("format");
    return line.text("prefix", format->prefix()).text("pairs", format->pairs()).text("join", format->join()).told();
  }
  if (const auto* step = QXDAOElementCast<QXDAOMethodStep>(&element)) {
    return Line("step").flag("resumable", step->resumable()).told();
  }
  const auto* method = QXDAOElementCast<QXDAOMethod>(&element);
  return method ? told(*method) : "an element without values";
}

std::unique_ptr<QXDAOElement> built(const std::string& xml) {
  std::optional<QXDAOError> error;
  auto element = QXDAOElement::elementWithXML(HandBuiltTree(parsed(xml)).root(), &error);
  EXPECT_NE(element, nullptr) << xml << ": " << error->message();
  return element;
}

struct ValueCase {
  std::string xml;
  std::string line;
};

void checkValues(const std::vector<ValueCase>& cases) {
  for (const auto& [xml, line] : cases) {
    const auto element = built(xml);
    EXPECT_EQ(element ? told(*element) : "", line) << xml;
  }
}

TEST(Values, OfDefinitions) {
  checkValues({
      {"<sql id='T1'/>", "sql name='T1' text=''"},
      {"<sql id='tt'> a <!-- c -->\n%{'*', b} c </sql>", "sql name='tt' text='ab c'"},
      {"<const A=' 20 '/>", "const name='A' text=' 20 '"},
      {"<crypt class=' P ' property=' p '/>", "crypt class=' P ' property=' p '"},
      {"<crypt property='p' class='P'/>", "crypt class='P' property='p'"},
      {"<map id='m' result=' P '><!-- c --></map>", "map name='m' class=' P ' columns=''"},
      {"<map id='m' result='P'><result column='c' property='a' x='y'/><result column='c' property=' b '/></map>",
       "map name='m' class='P' columns='c= b '"},
      {"<map id='m' result='P'><result column='c' property='a'/><result column='C' property='a'><x/></result></map>",
       "map name='m' class='P' columns='C=a|c=a'"},
      {"<pack as=' info ' properties='a, b'/>", "pack column='info' properties='a|b'"},
      {"<pack as='&#9;' properties='nickname, age&#9;,'/>", "pack column='\t' properties='nickname|age\t|'"},
      {"<pack as='i' properties=',,a,a'/>", "pack column='i' properties='||a|a'"},
      {"<pack as='i' properties='a,b' crypt=' TRUE '/>", "pack column='i' properties='a|b' crypted"},
  });
  for (const std::string crypt : {"", "yes", "1", "truex", "xtrue", "true&#10;", "&#10;true", "&#9;true"}) {
    checkValues({{"<pack as='i' properties='a,b' crypt='" + crypt + "'/>", "pack column='i' properties='a|b'"}});
  }
}

TEST(Values, OfChildren) {
  for (const auto& [xml, line] : std::vector<ValueCase>{
           {"<if true='&#10; a &#9;'/>", "0 true='a' tokens='1'"},
           {"<if false='a &gt; 1'/>", "0 false='a > 1' tokens='3'"},
           {"<when true='a'>x</when>", "1 true='a' tokens='1'"},
           {"<otherwise/>", "2"},
           {"<choose/>", "an element without values"},
           {"<foreach item=' i ' collection='c'/>", "foreach item=' i ' collection='c' text=''"},
           {"<foreach item='i' collection=' c ' open=' (' separator='' close=') ' reverse='YES'/>",
            "foreach item='i' collection=' c ' open=' (' separator='' close=') ' reverse text=''"},
           {"<foreach item='i' collection='c' reverse='no'>\n a,<!-- c --> b %{'*', c, d}\n</foreach>",
            "foreach item='i' collection='c' text='a, b c, d'"},
           {"<trim prefix=' W ' prefixOverrides='AND | OR'/>", "0 name=' W ' prefix='AND | OR' suffix=''"},
           {"<trim prefix='S' prefixOverrides='' suffixOverrides='a||b|'/>", "0 name='S' prefix='' suffix='a||b|'"},
           {"<where prefix='x' prefixOverrides='y' onVoid='ignoreAfter'/>",
            "2 name='where' prefix='AND |OR |and |or ' suffix=''"},
           {"<set onVoid='quit'/>", "1 name='set' prefix='' suffix=','"},
           {"<set onVoid='Quit'/>", "0 name='set' prefix='' suffix=','"},
           {"<format prefix=' p ' pairs=' ' join=' j '>x<y/></format>", "format prefix=' p ' pairs=' ' join=' j '"},
           {"<step resumable='1'/><step/>", "step resumable"},
           {"<step resumable='no'/><step resumable='1'/>", "step"},
       }) {
    const auto method = built("<update id='u'>" + xml + "</update>");
    EXPECT_EQ(told(*QXDAOElementCast<QXDAOMethod>(method.get())->children()->front()), line) << xml;
  }
}

TEST(Values, OfResultTypes) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"int", "type='int' row='0'"},
      {"long long", "type='long long' row='1'"},
      {"bool", "type='bool' row='2'"},
      {"double", "type='double' row='3'"},
      {"string", "type='string' row='4'"},
      {"binary", "type='binary' row='5'"},
      {"{}", "type='{}' row='6'"},
      {"Person", "type='Person' row='7'"},
      {":personMap", "type='personMap' row='8'"},
      {"[int]", "type='int' list='0'"},
      {"[{}]", "type='{}' list='6'"},
      {"[:personMap]", "type='personMap' list='8'"},
      {"[]", "type='' list='7'"},
      {":", "type='' row='8'"},
      {"[[int]]", "type='[int]' list='7'"},
      {":[Person]", "type='[Person]' row='8'"},
      {"[", "type='[' row='7'"},
      {"]", "type=']' row='7'"},
      {"[int", "type='[int' row='7'"},
      {"int]", "type='int]' row='7'"},
      {"[ int ]", "type=' int ' list='7'"},
      {"Int", "type='Int' row='7'"},
      {"long  long", "type='long  long' row='7'"},
  };
  for (const auto& [result, line] : cases) {
    checkValues({{"<select id='s' result='" + result + "'/>", "0 name='s' " + line + " arguments=''"}});
  }
}

TEST(Values, OfMethods) {
  checkValues({
      {"<select id='s' result='A' profile='1' parallel='yes' assignedTable='t'/>",
       "0 name='s' type='A' row='7' profile parallel table arguments=''"},
      {"<select id='s' result='A' profile='0' parallel='' assignedTable='no'/>",
       "0 name='s' type='A' row='7' arguments=''"},
      {"<update id='u' profile='Y' parallel='1' assignedTable='1' result='int'/>", "1 name='u' profile arguments=''"},
      {"<insert id='i' arguments='ids' foreach='ids.i' resumable='no'/>",
       "2 name='i' foreach item='i' collection='ids' arguments='ids'"},
      {"<insert id='i' resumable='1' foreach=''/>", "2 name='i' arguments=''"},
      {"<insert id='i' resumable='1'><step/><step/></insert>", "2 name='i' steped arguments=''"},
      {"<insert id='i'><try><except/></try></insert>", "2 name='i' try arguments=''"},
      {"<delete id='d' arguments='$ids' foreach=' ids . i ' resumable='true'/>",
       "3 name='d' foreach resumable item='i' collection='ids' arguments='ids!'"},
      {"<delete id='d' arguments='&#9;ids' foreach='&#9;ids.&#9;x'/>",
       "3 name='d' foreach item='\tx' collection='\tids' arguments='\tids'"},
      {"<update id='u' arguments='minAge, $ids ,name'/>", "1 name='u' arguments='minAge|ids!|name'"},
      {"<update id='u' arguments='$,$ a,$$a,a,a'/>", "1 name='u' arguments='!| a!|$a!|a|a'"},
      {"<update id='u' arguments='a,&#9;b&#10;,c d'/>", "1 name='u' arguments='a|\tb\n|c d'"},
      {"<upgrade toVersion='initial'>A</upgrade>", "4 version='0.000000' arguments=''"},
      {"<upgrade toVersion=' 2.5 '>A</upgrade>", "4 version='2.500000' arguments=''"},
      {"<upgrade toVersion='-1e1'>A</upgrade>", "4 version='-10.000000' arguments=''"},
  });
}

TEST(Values, ArgumentsByName) {
  const auto element = built("<update id='u' arguments='$a,b'/>");
  const auto* method = QXDAOElementCast<QXDAOMethod>(element.get());
  EXPECT_TRUE(method->hasArgumentWithName("a") && method->hasArgumentWithName("b"));
  EXPECT_FALSE(method->hasArgumentWithName("$a") || method->hasArgumentWithName("A"));
}

}  // namespace
}  // namespace korvex
