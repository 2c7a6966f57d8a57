// Every property of every element class: the getter returns what the setter stored, and the setter accepts what the
// getter returned.
#include <gtest/gtest.h>

#include <span>
#include <type_traits>

#include "korvex/QXDAOMethodArgument.h"
#include "korvex/dao.h"
#include "tests/support/HandBuiltTree.h"

namespace korvex {
namespace {

constexpr const char* longText = "a text that is long enough to need memory of its own";

template <typename Value>
auto comparable(const Value& value) {
  return value;
}
OptionalString comparable(const OptionalStringView& value) { return ownedString(value); }
template <typename Item>
std::vector<Item> comparable(std::span<const Item> items) {
  return {items.begin(), items.end()};
}
template <typename Item>
std::optional<std::vector<Item>> comparable(const std::optional<std::span<const Item>>& items) {
  return items ? std::optional(comparable(*items)) : std::nullopt;
}

template <typename Element, typename Getter, typename Setter, typename Value>
void expectKept(const char* name, Getter getter, Setter setter, const Value& value) {
  SCOPED_TRACE(name);
  Element element;
  const Element& read = element;
  using Kept = decltype(comparable((read.*getter)()));
  const Kept initial = comparable((read.*getter)());
  EXPECT_FALSE(initial == Kept(value));
  (element.*setter)(value);
  EXPECT_TRUE(comparable((read.*getter)()) == Kept(value));
  (element.*setter)((read.*getter)());
  EXPECT_TRUE(comparable((read.*getter)()) == Kept(value));
  (element.*setter)(initial);
  EXPECT_TRUE(comparable((read.*getter)()) == initial);
}

template <typename Element, typename Value>
using Getter = Value (Element::*)() const;

#define EXPECT_KEPT(Class, property, Setter, value)                                                     \
  expectKept<Class>(#Class "::" #property,                                                              \
                    Getter<Class, decltype(std::declval<const Class&>().property())>(&Class::property), \
                    &Class::Setter, value)

TEST(Properties, KeepTheirValues) {
  EXPECT_KEPT(QXDAOText, name, setName, longText);
  EXPECT_KEPT(QXDAOText, expression, setExpression, longText);
  EXPECT_KEPT(QXDAOText, speedyStatus, setSpeedyStatus, QXDAOTextSpeedyStatusInvalid);
  EXPECT_KEPT(QXDAOForeach, item, setItem, longText);
  EXPECT_KEPT(QXDAOForeach, collection, setCollection, longText);
  EXPECT_KEPT(QXDAOForeach, open, setOpen, longText);
  EXPECT_KEPT(QXDAOForeach, separator, setSeparator, longText);
  EXPECT_KEPT(QXDAOForeach, close, setClose, longText);
  EXPECT_KEPT(QXDAOForeach, reverse, setReverse, true);
  EXPECT_KEPT(QXDAOForeach, commonBindModel, setCommonBindModel, true);
  EXPECT_KEPT(QXDAOKeyValueFormatter, prefix, setPrefix, longText);
  EXPECT_KEPT(QXDAOKeyValueFormatter, pairs, setPairs, longText);
  EXPECT_KEPT(QXDAOKeyValueFormatter, join, setJoin, longText);
  EXPECT_KEPT(QXDAOMap, resultClass, setResultClass, longText);
  EXPECT_KEPT(QXDAOMap, columnPropertyMap, setColumnPropertyMap, std::vector<QXDAOColumn>({{"a", longText}}));
  EXPECT_KEPT(QXDAOCryptProperty, className, setClassName, longText);
  EXPECT_KEPT(QXDAOCryptProperty, propertyName, setPropertyName, longText);
  EXPECT_KEPT(QXDAOPack, column, setColumn, longText);
  EXPECT_KEPT(QXDAOPack, propertyList, setPropertyList, std::vector<std::string_view>({"", longText}));
  EXPECT_KEPT(QXDAOPack, crypted, setCrypted, true);
  EXPECT_KEPT(QXDAOMethod, module, setModule, longText);
  EXPECT_KEPT(QXDAOMethod, operation, setOperation, QXDAOOperationUpgrade);
  EXPECT_KEPT(QXDAOMethod, resultType, setResultType, QXDAOSelectResultTypeMappedObject);
  EXPECT_KEPT(QXDAOMethod, resultArrayed, setResultArrayed, true);
  EXPECT_KEPT(QXDAOMethod, assignedTable, setAssignedTable, true);
  EXPECT_KEPT(QXDAOMethod, resultTypeName, setResultTypeName, longText);
  EXPECT_KEPT(QXDAOMethod, steped, setSteped, true);
  EXPECT_KEPT(QXDAOMethod, tryBlock, setTryBlock, true);
  EXPECT_KEPT(QXDAOMethod, parallel, setParallel, true);
  EXPECT_KEPT(QXDAOMethod, foreach, setForeach, true);
  EXPECT_KEPT(QXDAOMethod, foreachResumable, setForeachResumable, true);
  EXPECT_KEPT(QXDAOMethod, foreachItemName, setForeachItemName, longText);
  EXPECT_KEPT(QXDAOMethod, foreachCollection, setForeachCollection, longText);
  EXPECT_KEPT(QXDAOMethod, toVersion, setToVersion, 2.5);
  EXPECT_KEPT(QXDAOMethodArgument, name, setName, longText);
  EXPECT_KEPT(QXDAOMethodArgument, notNull, setNotNull, true);
  EXPECT_KEPT(QXDAOMethodStep, resumable, setResumable, true);
  EXPECT_KEPT(QXDAOCondition, type, setType, QXDAOConditionTypeOtherwise);
  EXPECT_KEPT(QXDAOCondition, evaluateAsTrue, setEvaluateAsTrue, true);
  EXPECT_KEPT(QXDAOCondition, expression, setExpression, longText);
  EXPECT_KEPT(QXDAOCondition, tokenList, setTokenList, std::vector<QXDAOToken>({{QXDAOTokenTypeString, longText}}));
  EXPECT_KEPT(QXDAOTrim, operationName, setOperationName, longText);
  EXPECT_KEPT(QXDAOTrim, prefixOverrides, setPrefixOverrides, std::vector<std::string_view>({"", longText}));
  EXPECT_KEPT(QXDAOTrim, suffixOverrides, setSuffixOverrides, std::vector<std::string_view>({longText}));
  EXPECT_KEPT(QXDAOTrim, onVoid, setOnVoid, QXDAOTrimOnVoidTypeIgnoreAfter);
  // Values that only the full width of an enumeration holds.
  EXPECT_KEPT(QXDAOText, speedyStatus, setSpeedyStatus, QXDAOTextSpeedyStatus{257});
  EXPECT_KEPT(QXDAOMethod, operation, setOperation, QXDAOOperation{257});
  EXPECT_KEPT(QXDAOMethod, resultType, setResultType, QXDAOSelectResultType{~0ULL});
  EXPECT_KEPT(QXDAOCondition, type, setType, QXDAOConditionType{256});
  EXPECT_KEPT(QXDAOTrim, onVoid, setOnVoid, QXDAOTrimOnVoidType{~0ULL});
  // Links own nothing.
  QXDAOMethod method;
  QXDAOTry block;
  QXDAOExcept except;
  EXPECT_KEPT(QXDAOMethodStep, parentMethod, setParentMethod, &method);
  EXPECT_KEPT(QXDAOTry, parentMethod, setParentMethod, &method);
  EXPECT_KEPT(QXDAOTry, exceptElement, setExceptElement, &except);
  EXPECT_KEPT(QXDAOExcept, tryElement, setTryElement, &block);
}

#undef EXPECT_KEPT

template <typename Element>
void expectOwnsText(const char* name) {
  Element element;
  EXPECT_EQ(element.text(), nullptr) << name;
  auto owned = std::make_unique<QXDAOText>();
  const QXDAOText* given = owned.get();
  element.setText(std::move(owned));
  EXPECT_EQ(element.text().get(), given) << name;
}

TEST(Properties, OwnWhatTheyAreGiven) {
  expectOwnsText<QXDAOForeach>("foreach");
  expectOwnsText<QXDAOSqlBlock>("sql");
  expectOwnsText<QXDAOConst>("const");
  QXDAOChoose choose;
  EXPECT_FALSE(choose.children());
  QXDAOElementList children;
  children.push_back(std::make_unique<QXDAOText>());
  const QXDAOElement* child = children.front().get();
  choose.setChildren(std::move(children));
  EXPECT_EQ(choose.children()->front().get(), child);
  const auto taken = choose.takeChildren();
  EXPECT_EQ(taken->front().get(), child);
  EXPECT_FALSE(choose.children());
}

TEST(Properties, EmptyAttributesLeaveThemAlone) {
  const HandBuiltTree tree(TreeNode::element("select", {{"id", "s"},
                                                        {"result", "int"},
                                                        {"profile", ""},
                                                        {"parallel", ""},
                                                        {"assignedTable", ""},
                                                        {"arguments", "a"},
                                                        {"foreach", "a.b"},
                                                        {"resumable", ""}}));
  QXDAOMethod method;
  method._profile = true;
  method.setParallel(true);
  method.setAssignedTable(true);
  method.setForeachResumable(true);
  method.initNamedElementWithXML(tree.root());
  EXPECT_TRUE(method.foreach () && method._profile && method.parallel() && method.assignedTable());
  EXPECT_TRUE(method.foreachResumable());
  QXDAOMethodStep step;
  step.setResumable(true);
  step.initWithXML(HandBuiltTree(TreeNode::element("step", {{"resumable", ""}})).root(), &method);
  EXPECT_TRUE(step.resumable());
}

TEST(Properties, ArgumentsAreChangedInPlace) {
  QXDAOMethod method;
  EXPECT_FALSE(method.hasArgumentWithName("a"));
  method.setArguments(std::vector<QXDAOMethodArgument>(2));
  EXPECT_FALSE(method.hasArgumentWithName(std::nullopt));
  method.mutableArguments().back().setName("a");
  EXPECT_TRUE(method.hasArgumentWithName("a"));
  EXPECT_FALSE(method.hasArgumentWithName(""));
}

TEST(Properties, ColumnsAreFound) {
  QXDAOMap map;
  EXPECT_EQ(map.propertyOfColumn("a"), std::nullopt);
  map.setColumnPropertyMap(std::vector<QXDAOColumn>({{"b", "1"}, {"a", "2"}, {"b", "3"}, {"a b", "4"}}));
  EXPECT_EQ(map.columnPropertyMap()->size(), 3U);
  for (const auto& [column, property] : {QXDAOColumn{"a", "2"}, {"b", "3"}, {"a b", "4"}}) {
    EXPECT_EQ(map.propertyOfColumn(column), property) << column;
  }
  EXPECT_EQ(map.propertyOfColumn("c"), std::nullopt);
}

TEST(Properties, TokensKeepTheirTexts) {
  QXDAOCondition condition;
  std::string expression = "first > 1";
  condition.setExpression(expression);
  condition.setTokenList(QXDAOEvaluator::buildTokenListWithExpression(expression));
  expression.assign(expression.size(), '#');
  condition.setExpression("second");
  ASSERT_EQ(condition.tokenList()->size(), 3U);
  EXPECT_EQ(condition.tokenList()->front(), (QXDAOToken{QXDAOTokenTypeName, "first"}));
  EXPECT_EQ(condition.tokenList()->back(), (QXDAOToken{QXDAOTokenTypeNumber, "1"}));
}

TEST(Properties, LongTokenListsAreComplete) {
  std::string expression;
  for (int number = 0; number < 40; ++number) expression += std::to_string(number) + " ";
  const QXDAOTokenList tokens = QXDAOEvaluator::buildTokenListWithExpression(expression);
  ASSERT_EQ(tokens.size(), 40U);
  for (std::size_t at = 0; at < tokens.size(); ++at) EXPECT_EQ(tokens.data()[at].text, std::to_string(at));
}

// What is taken out of a tree, or set in it, does not depend on the tree.
TEST(Trees, TakenChildrenOutliveTheirTree) {
  const HandBuiltTree tree(TreeNode::element(
      "update", {{"id", "a name that is long enough"}, {"arguments", "first, second"}},
      {TreeNode::text("a text"),
       TreeNode::element("where", {}, {TreeNode::element("if", {{"true", "a > 1"}}, {TreeNode::text("b")})})}));
  auto root = QXDAOElement::elementWithXML(tree.root());
  auto* method = QXDAOElementCast<QXDAOMethod>(root.get());
  auto taken = method->takeChildren();
  EXPECT_FALSE(method->children());
  method->mutableArguments().front().setName("another name");
  root.reset();
  ASSERT_EQ(taken->size(), 2U);
  EXPECT_EQ(QXDAOElementCast<QXDAOText>(taken->front().get())->expression(), "a text");
  taken->erase(taken->begin());
  QXDAOChoose choose;
  choose.setChildren(std::move(taken));
  auto* where = QXDAOElementCast<QXDAOTrim>(choose.children()->front().get());
  auto deeper = where->takeChildren();
  choose.setChildren(std::nullopt);
  const auto* condition = QXDAOElementCast<QXDAOCondition>(deeper->front().get());
  EXPECT_EQ(condition->expression(), "a > 1");
  EXPECT_EQ(condition->tokenList()->back().text, "1");
  EXPECT_EQ(condition->children()->size(), 1U);
}

}  // namespace
}  // namespace korvex
