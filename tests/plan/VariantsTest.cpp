// The SQL that units can have.
#include <gtest/gtest.h>

#include <bitset>

#include "korvex/Definition.h"
#include "korvex/DefinitionSet.h"
#include "korvex/Document.h"
#include "plan/Variants.h"

namespace korvex {
namespace {

struct LoadedSet {
  std::unique_ptr<Document> document;
  std::shared_ptr<const DefinitionSet> set;
};

LoadedSet loaded(const std::string& definition) {
  LoadedSet result;
  result.document = Document::fromBytes("<k>" + definition + "</k>").document;
  DefinitionSetBuilder builder;
  builder.add("d", loadDefinitions(*result.document));
  auto built = std::move(builder).build();
  for (const DefinitionError& error : built.errors) ADD_FAILURE() << error.message;
  result.set = built.set;
  return result;
}

// "SQL (decisions); SQL (decisions)".
std::string variantsIn(const std::string& definition) {
  const LoadedSet loadedSet = loaded(definition);
  const PlanUnit& unit = loadedSet.set->plans().front()->units().front();
  const UnitVariants variants = variantsOf(unit);
  std::string result;
  for (const Variant& variant : variants.variants) {
    result += (result.empty() ? "" : "; ") + VariantText(unit, variant.key).sql() + " (";
    for (const VariantDecision& decision : variant.decisions) {
      result += (result.ends_with('(') ? "" : ", ") + variants.inWords(decision);
    }
    result += ')';
  }
  return result;
}

struct VariantCase {
  const char* arguments;
  const char* body;
  const char* variants;
};

constexpr VariantCase variantCases[] = {
    {"a", "A", "A ()"},
    {"a", "<if true='a'>A</if>B<if false='a'>C</if>", "A B (a is true); B C (a is false)"},
    {"a", "<if true='a == null'>A</if>B<if true='a != null'>C</if>", "A B (a is null); B C (a is not null)"},
    {"$a", "<if true='a == null'>A</if>B", "B ()"},
    {"n", "<if true='n > 5'>A</if>B<if true='n > 3'>C</if>",
     "A B C (n > 5 is true); B C (n > 5 is false, n > 3 is true); B (n > 5 is false, n > 3 is false)"},
    {"t", "<choose><when true=\"t == 'x'\">A</when><when true=\"t == 'y'\">B</when><otherwise>C</otherwise></choose>",
     "A (t == 'x' is true); B (t == 'x' is false, t == 'y' is true); C (t == 'x' is false, t == 'y' is false)"},
    {"a,b", "<if true='a &amp;&amp; !b'>A</if>B", "B (a is true, b is true); A B (a is true, b is false)"},
    {"a,b", "<if true='a || b'>A</if>B<if true='b == a'>C</if><if false='b == a'>D</if>",
     "A B C (a is true, b == a is true); A B D (a is true, b == a is false); "
     "B C (a is false, b is false, b == a is true); B D (a is false, b is false, b == a is false)"},
    {"p", "<if true='p.a'>A</if>B<if true='p.b'>C</if>",
     "A B C (p.a is true, p.b is true); A B (p.a is true, p.b is false); B C (p.a is false, p.b is true); B (p.a is "
     "false, p.b is false)"},
    // What is calculated is not followed, so that no variant is missed.
    {"a", "<if true='-a > 3'>A</if>B", "A B (-a > 3 is true); B (-a > 3 is false)"},
    {"a", "<if true='a * 2 == 7'>A</if>B", "A B (a * 2 == 7 is true); B (a * 2 == 7 is false)"},
    {"a", "<if true='a > -1e3'>A</if><if true='a > -5'>B</if>C",
     "A B C (a > -1000 is true, a > -5 is true); A C (a > -1000 is true, a > -5 is false); C (a > -1000 is false)"},
    {"l", "<if true='l.count > 99'>A</if>B", "A B (l.count > 99 is true); B (l.count > 99 is false)"},
    {"a", "<if true='1 > 2'>A</if><if true='true'>B</if>", "B ()"},
    {"a", "<if true=\"a == 'x' &amp;&amp; a > 3\">A</if>B",
     "B (a == 'x' is false)"},  // texts and numbers have no order
    {"t", "<if true='t.length > 3'>A</if>B<if true='t'>C</if>",
     "A B C (t.length > 3 is true); B C (t.length > 3 is false, t is true); B (t.length > 3 is false, t is false)"},
    {"l",
     "A<if true='l.count > 0'>IN <foreach collection='l' item='i' open='(' separator=',' close=')'>:i</foreach></if>",
     "A IN (?,?) (l.count > 0 is true, l has 2 entries); A IN (?) (l.count > 0 is true, l has 1 entry); A (l.count > 0 "
     "is false)"},
    {"l", "<if true='l.count > 3'>A</if><foreach collection='l' item='i' separator=','>:i</foreach>",
     "A ?,?,?,? (l.count > 3 is true); ?,? (l.count > 3 is false, l has 2 entries); ? (l.count > 3 is false, l has 1 "
     "entry)"},
    {"d", "A<format prefix='SET ' pairs='d' join=','/>", "A SET \"k\" = ? (d has 1 entry); A (d is empty)"},
    {"a", "A<where onVoid='quit'><if true='a'>B</if></where>", "A where B (a is true)"},
    {"a", "A<where><if true='a'>B</if></where>", "A where B (a is true)"},  // the assembly refuses the other one
};

TEST(Variants, AreThoseThatArgumentsCanGive) {
  for (const auto& [arguments, body, variants] : variantCases) {
    const std::string method = std::string("<update id='m' arguments='") + arguments + "'>" + body + "</update>";
    EXPECT_EQ(variantsIn(method), variants) << method;
  }
}

TEST(Variants, AreCoveredByThreeDecisionsIfThereAreTooMany) {
  constexpr std::size_t count = 40;
  std::string arguments;
  std::string body = "A";
  for (std::size_t at = 0; at < count; ++at) {
    const std::string name = "a" + std::to_string(at);
    arguments += (at == 0 ? "" : ",") + name;
    body += "<if true='" + name + "'>" + name + "</if>";
  }
  const LoadedSet set = loaded("<update id='m' arguments='" + arguments + "'>" + body + "</update>");
  const UnitVariants variants = variantsOf(set.set->plans().front()->units().front());
  EXPECT_FALSE(variants.complete);
  EXPECT_FALSE(variants.stopped);
  EXPECT_LT(variants.variants.size(), 400U);
  std::vector<std::bitset<count>> rows;
  for (const Variant& variant : variants.variants) {
    ASSERT_EQ(variant.decisions.size(), count);
    for (const VariantDecision& decision : variant.decisions) {
      if (&decision == variant.decisions.data()) rows.emplace_back();
      rows.back()[decision.question] = decision.answer == 1;
    }
  }
  for (std::size_t a = 0; a < count; ++a) {
    for (std::size_t b = a + 1; b < count; ++b) {
      for (std::size_t c = b + 1; c < count; ++c) {
        std::bitset<8> seen;
        for (const auto& row : rows) seen.set((row[a] ? 4U : 0U) + (row[b] ? 2U : 0U) + (row[c] ? 1U : 0U));
        ASSERT_TRUE(seen.all()) << a << ' ' << b << ' ' << c;
      }
    }
  }
}

}  // namespace
}  // namespace korvex
