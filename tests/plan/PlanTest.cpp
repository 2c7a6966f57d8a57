// Plans as an engine uses them: keys, places, values that are not copied, digests.
#include <gtest/gtest.h>

#include <set>

#include "korvex/Plan.h"
#include "tests/support/AddressBook.h"
#include "tests/support/DefinitionSets.h"

namespace korvex {
namespace {

std::shared_ptr<const DefinitionSet> setOf(const std::string& text) {
  DefinitionSetBuilder::Result result = buildSet({text});
  for (const DefinitionError& error : result.errors) ADD_FAILURE() << error.message;
  return result.set;
}

TEST(Plan, EveryMethodOfTheAddressBookIsPlanned) {
  const auto set = setOf(addressBook());
  EXPECT_EQ(set->plans().size(), 26U);
  EXPECT_EQ(set->upgrades().size(), 4U);
  EXPECT_EQ(set->plan("searchPersons")->method().module(), "1.xml");
  EXPECT_EQ(set->plan("placeGroup")->structure(), PlanStructure::Try);
  EXPECT_EQ(set->plan("forgetPerson")->structure(), PlanStructure::Steps);
  EXPECT_TRUE(set->upgrades()[2]->units()[1].resumable());
  EXPECT_NE(set->map("personRow"), nullptr);
  EXPECT_NE(set->pack("secrets"), nullptr);
  EXPECT_EQ(set->plan("personRow"), nullptr);
}

// Equal decisions yield equal keys for any values; different decisions yield different keys.
TEST(Plan, KeysStandForTexts) {
  const auto set = setOf(addressBook());
  const PlanUnit& unit = set->plan("searchPersons")->units()[0];
  const auto keyOf = [&unit](const Arguments& arguments) { return assemble(unit, arguments).key; };
  EXPECT_EQ(keyOf({{"text", "Ada"}}), keyOf({{"text", "Grace"}}));
  EXPECT_EQ(keyOf({{"groupIds", ValueList{1, 2}}}), keyOf({{"groupIds", ValueList{3, 4}}}));
  const std::set<std::string> keys = {keyOf({}), keyOf({{"text", "Ada"}}), keyOf({{"order", "age"}}),
                                      keyOf({{"groupIds", ValueList{1}}}), keyOf({{"groupIds", ValueList{1, 2}}})};
  EXPECT_EQ(keys.size(), 5U);
  const PlanUnit& patch = set->plan("patchPerson")->units()[0];
  const auto patchKey = [&patch](const Dictionary& changes) {
    return assemble(patch, {{"personId", 1}, {"changes", changes}}).key;
  };
  EXPECT_EQ(patchKey({{"a", 1}, {"b", 2}}), patchKey({{"b", 3}, {"a", 4}}));
  EXPECT_NE(patchKey({{"a", 1}, {"b", 2}}), patchKey({{"ab", 1}}));
  EXPECT_TRUE(set->plan("countPersons")->units()[0].fixedText());
  EXPECT_FALSE(unit.fixedText());
}

TEST(Plan, EachPieceKnowsItsPlace) {
  const auto set = setOf(R"xml(<d>
<sql id="cols">a,
   b</sql>
<select id="m" arguments="x, ids" result="int">
  SELECT @cols, c
  FROM t é = :x
  <where>
    <if true="ids">AND id IN <foreach collection="ids" item="i" open="(" close=")">
      f(:i)</foreach></if>
  </where>
  <![CDATA[ ORDER < 1 ]]>
</select></d>)xml");
  Assembly assembly;
  const Arguments arguments = {{"x", 1}, {"ids", ValueList{1}}};
  const Plan& plan = *set->plan("m");
  ASSERT_FALSE(assembly.begin(plan, arguments));
  ASSERT_FALSE(assembly.assemble(plan.units()[0]));
  const std::string sql = assembly.sql();
  ASSERT_EQ(sql, "SELECT a,\n   b, c\n  FROM t é = ? where id IN (f(?)) ORDER < 1");
  const auto placeOf = [&](std::string_view piece, std::size_t behind = 0) {
    const XMLPosition position = assembly.placeOf(sql.find(piece) + behind).position;
    return std::to_string(position.line) + ":" + std::to_string(position.column);
  };
  EXPECT_EQ(placeOf("SELECT"), "5:3");
  EXPECT_EQ(placeOf("a,"), "2:16");
  EXPECT_EQ(placeOf("b,"), "3:4");
  EXPECT_EQ(placeOf(", c", 2), "5:17");
  EXPECT_EQ(placeOf("FROM"), "6:3");
  EXPECT_EQ(placeOf("= ?", 2), "6:14");
  EXPECT_EQ(placeOf("where"), "7:3");
  EXPECT_EQ(placeOf("id IN"), "8:24");
  EXPECT_EQ(placeOf("f("), "9:7");
  EXPECT_EQ(placeOf("f(?", 2), "9:9");
  EXPECT_EQ(placeOf("ORDER"), "11:13");
  EXPECT_EQ(assembly.placeOf(0).document, "1.xml");
  EXPECT_EQ(plan.place().position, (XMLPosition{4, 1}));
}

TEST(Plan, ValuesAreNotCopied) {
  const auto set = setOf("<select id='m' arguments='a' result='int'>:a :a.text</select>");
  const std::string large(10'000'000, '\'');
  const Arguments arguments = {{"a", Dictionary{{"text", large}}}};
  Assembly assembly;
  const Arguments null = {{"a", nullptr}};
  ASSERT_FALSE(assembly.begin(*set->plan("m"), null));
  ASSERT_FALSE(assembly.begin(*set->plan("m"), arguments));
  EXPECT_TRUE(assembly.assemble(set->plan("m")->units()[0]));  // a dictionary cannot be bound
  EXPECT_EQ(assembly.sql(), "");
  const auto other = setOf("<select id='m' arguments='a' result='int'>:a.text</select>");
  ASSERT_FALSE(assembly.begin(*other->plan("m"), arguments));
  ASSERT_FALSE(assembly.assemble(other->plan("m")->units()[0]));
  ASSERT_EQ(assembly.values().size(), 1U);
  EXPECT_EQ(assembly.values()[0].name, "a.text");
  EXPECT_EQ(assembly.values()[0].value.bytes().data(), arguments.find("a")->dictionary()->find("text")->text()->data());
}

TEST(Plan, EntriesOfAMethodsForeach) {
  const auto set = setOf(addressBook());
  const Plan& plan = *set->plan("importPhones");
  Assembly assembly;
  const Arguments none = {{"phones", ValueList{}}};
  ASSERT_FALSE(assembly.begin(plan, none));
  EXPECT_EQ(assembly.entryCount(), 0U);
  const Arguments arguments = {{"phones", ValueList{Dictionary{{"number", "1"}}, Dictionary{{"number", "2"}}}}};
  ASSERT_FALSE(assembly.begin(plan, arguments));
  ASSERT_EQ(assembly.entryCount(), 2U);
  for (const char* number : {"1", "2"}) {
    assembly.chooseEntry(*number == '1' ? 0 : 1);
    ASSERT_FALSE(assembly.assemble(plan.units()[0]));
    EXPECT_EQ(assembly.values()[2].value, ValueView::ofText(number));
  }
  EXPECT_EQ(assemble(plan.units()[0], arguments).values.at(2).view(), ValueView::ofText("1"));
}

TEST(Plan, DigestsTellArgumentsApart) {
  const Arguments arguments = {{"a", 1}, {"b", ValueList{1, "x"}}};
  EXPECT_EQ(digestOf(arguments), digestOf({{"b", ValueList{1, "x"}}, {"a", 1}}));
  EXPECT_EQ(digestOf(arguments).size(), 16U);
  const std::set<std::string> digests = {digestOf({}),
                                         digestOf({{"a", 1}}),
                                         digestOf({{"a", 1.0}}),
                                         digestOf({{"a", "1"}}),
                                         digestOf({{"b", 1}}),
                                         digestOf({{"a", nullptr}}),
                                         digestOf({{"a", Value::blob("1")}}),
                                         digestOf(arguments),
                                         digestOf({{"a", "bc"}}),
                                         digestOf({{"a", ValueList{"b", "c"}}}),
                                         digestOf({{"a", ValueList{"bc"}}})};
  EXPECT_EQ(digests.size(), 11U);
}

TEST(Dictionary, FindsAndReplaces) {
  Dictionary dictionary;
  for (int round = 0; round < 2; ++round) {
    for (int index = 0; index < 1000; ++index) dictionary.set("key" + std::to_string(index), index + round);
    EXPECT_EQ(dictionary.size(), 1000U);
    EXPECT_EQ(dictionary.entries()[500].name, "key500");
    for (int index = 0; index < 1000; ++index)
      EXPECT_EQ(*dictionary.find("key" + std::to_string(index)), Value(index + round));
  }
  EXPECT_EQ(dictionary.find("key1000"), nullptr);
  EXPECT_EQ(Value(Dictionary{{"a", 1}, {"b", 2}}), Value(Dictionary{{"b", 2}, {"a", 1}}));
}

// Errors are found in time, whatever a definition refers to or inserts.
TEST(DefinitionSet, HostileSetsEndInTime) {
  std::string undeclared = "<select id='m' result='int'>";
  for (int index = 0; index < 20000; ++index) undeclared += ":x" + std::to_string(index) + " ";
  const DefinitionSetBuilder::Result many = buildSet({undeclared + "</select>"});
  EXPECT_EQ(many.set, nullptr);
  EXPECT_EQ(many.errors.size(), 10000U);
  std::string chain = "<d>";
  for (int index = 0; index < 20000; ++index) {
    chain += "<sql id='b" + std::to_string(index) + "'>@b" + std::to_string(index + 1) + "</sql>";
  }
  EXPECT_EQ(buildSet({chain + "<sql id='b20000'>1</sql></d>"}).set, nullptr);
}

}  // namespace
}  // namespace korvex
