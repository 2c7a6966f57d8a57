// What the attributes of a method become: attributes → one line that tells them.
#include <gtest/gtest.h>

#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOMethodArgument.h"
#include "korvex/QXDAOMethodStep.h"

namespace korvex {
namespace {

// The method of one definition; a blank one, with a failed test, when it is refused.
std::unique_ptr<QXDAOMethod> methodFrom(const std::string& xml) {
  const auto result = Document::fromBytes(xml);
  EXPECT_TRUE(result.document) << xml;
  std::vector<Definition> definitions = loadDefinitions(*result.document);
  EXPECT_NE(QXDAOElementCast<QXDAOMethod>(definitions.at(0).element.get()), nullptr) << xml;
  if (!definitions[0].element) return std::make_unique<QXDAOMethod>();
  return std::unique_ptr<QXDAOMethod>(static_cast<QXDAOMethod*>(definitions[0].element.release()));
}

TEST(Method, ResultTypes) {
  struct Case {
    const char* result;
    bool arrayed;
    QXDAOSelectResultType type;
    const char* typeName;
  };
  for (const auto& [result, arrayed, type, typeName] : std::vector<Case>{
           {"int", false, QXDAOSelectResultTypeInt, "int"},
           {"long long", false, QXDAOSelectResultTypeLongLong, "long long"},
           {"bool", false, QXDAOSelectResultTypeBool, "bool"},
           {"double", false, QXDAOSelectResultTypeDouble, "double"},
           {"string", false, QXDAOSelectResultTypeString, "string"},
           {"binary", false, QXDAOSelectResultTypeBinary, "binary"},
           {"{}", false, QXDAOSelectResultTypeColumnMap, "{}"},
           {"Person", false, QXDAOSelectResultTypeObject, "Person"},
           {":personMap", false, QXDAOSelectResultTypeMappedObject, "personMap"},
           {"[int]", true, QXDAOSelectResultTypeInt, "int"},
           {"[{}]", true, QXDAOSelectResultTypeColumnMap, "{}"},
           {"[:personMap]", true, QXDAOSelectResultTypeMappedObject, "personMap"},
           {"[]", true, QXDAOSelectResultTypeObject, ""},
           {":", false, QXDAOSelectResultTypeMappedObject, ""},
           {"[:]", true, QXDAOSelectResultTypeMappedObject, ""},
           {"[[int]]", true, QXDAOSelectResultTypeObject, "[int]"},
           {":[Person]", false, QXDAOSelectResultTypeMappedObject, "[Person]"},
           {"[", false, QXDAOSelectResultTypeObject, "["},
           {"]", false, QXDAOSelectResultTypeObject, "]"},
           {"[int", false, QXDAOSelectResultTypeObject, "[int"},
           {"int]", false, QXDAOSelectResultTypeObject, "int]"},
           {" int", false, QXDAOSelectResultTypeObject, " int"},
           {"[ int ]", true, QXDAOSelectResultTypeObject, " int "},
           {"Int", false, QXDAOSelectResultTypeObject, "Int"},
           {"long  long", false, QXDAOSelectResultTypeObject, "long  long"},
       }) {
    SCOPED_TRACE(result);
    const auto method = methodFrom("<select id='s' result='" + std::string(result) + "'/>");
    EXPECT_EQ(method->resultArrayed(), arrayed);
    EXPECT_EQ(method->resultType(), type);
    EXPECT_EQ(method->resultTypeName(), typeName);
  }
}

// "a! b" for an argument a that must not be null and an argument b.
std::string told(const std::vector<QXDAOMethodArgument>& arguments) {
  std::string line;
  for (const QXDAOMethodArgument& argument : arguments) {
    line.append(line.empty() ? "" : "|").append(*argument.name()).append(argument.notNull() ? "!" : "");
  }
  return line;
}

TEST(Method, Arguments) {
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"", ""},       {"minAge, $ids ,name", "minAge|ids!|name"}, {"$", "!"}, {"$ a", " a!"}, {"$$a", "$a!"},
      {"a,a", "a|a"}, {"a,&#9;b&#10;,c d", "a|\tb\n|c d"}};
  for (const auto& [declared, expected] : cases) {
    const auto method = methodFrom("<update id='u' arguments='" + std::string(declared) + "'/>");
    ASSERT_TRUE(method->arguments()) << declared;
    EXPECT_EQ(told(*method->arguments()), expected) << declared;
  }
  const auto method = methodFrom("<update id='u' arguments='$a,b'/>");
  EXPECT_TRUE(method->hasArgumentWithName("a") && method->hasArgumentWithName("b"));
  EXPECT_FALSE(method->hasArgumentWithName("$a") || method->hasArgumentWithName("A"));
}

// Which attributes each operation reads, as letters: p(rofile), P(arallel), T(able), f(oreach), r(esumable).
TEST(Method, Options) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"<select id='s' result='A' profile='1' parallel='yes' assignedTable='t'/>", "pPT"},
      {"<select id='s' result='A' profile='0' parallel='' assignedTable='no'/>", ""},
      {"<update id='u' profile='Y' parallel='1' assignedTable='1' result='int'/>", "p"},
      {"<delete id='d' arguments='$ids' foreach=' ids . i ' resumable='true'/>", "fr"},
      {"<insert id='i' arguments='ids' foreach='ids.i' resumable='no'/>", "f"},
      {"<insert id='i' resumable='1' foreach=''/>", ""},
      {"<insert id='i' resumable='1'/>", ""},
  };
  for (const auto& [xml, expected] : cases) {
    const auto method = methodFrom(xml);
    std::string options;
    for (const auto& [letter, set] :
         {std::pair('p', method->_profile), std::pair('P', method->parallel()), std::pair('T', method->assignedTable()),
          std::pair('f', method->foreach ()), std::pair('r', method->foreachResumable())}) {
      if (set) options += letter;
    }
    EXPECT_EQ(options, expected) << xml;
    EXPECT_EQ(method->foreachCollection(), method->foreach () ? OptionalString("ids") : std::nullopt) << xml;
    EXPECT_EQ(method->foreachItemName(), method->foreach () ? OptionalString("i") : std::nullopt) << xml;
    const bool select = method->operation() == QXDAOOperationSelect;
    EXPECT_EQ(method->resultTypeName(), select ? OptionalString("A") : std::nullopt) << xml;
  }
  const auto tab = methodFrom("<insert id='i' arguments='ids' foreach='ids.&#9;x'/>");
  EXPECT_EQ(tab->foreachItemName(), "\tx");
  const auto stepped = methodFrom("<insert id='i'><step resumable='no'/><step resumable='1'/></insert>");
  const auto resumable = [&](std::size_t at) {
    return QXDAOElementCast<QXDAOMethodStep>(stepped->children()->at(at).get())->resumable();
  };
  EXPECT_FALSE(resumable(0));
  EXPECT_TRUE(resumable(1));
}

TEST(Method, Upgrades) {
  const std::vector<std::pair<const char*, double>> cases = {{"initial", 0}, {"2", 2}, {" 2.5 ", 2.5}, {"-1e1", -10}};
  for (const auto& [version, number] : cases) {
    const auto method = methodFrom("<upgrade toVersion='" + std::string(version) + "'>A</upgrade>");
    EXPECT_EQ(method->toVersion(), number) << version;
    EXPECT_EQ(method->operation(), QXDAOOperationUpgrade);
    EXPECT_EQ(method->name(), std::nullopt);
  }
}

}  // namespace
}  // namespace korvex
