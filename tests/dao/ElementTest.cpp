// Element trees over hand-built documents: the factory's contract, node kinds that parsers seldom
// deliver, links inside a tree, and trees built on several threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "dao/core/Arena.h"
#include "korvex/MappingSequence.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOEngineValue.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAOEvaluator.h"
#include "korvex/QXDAOExcept.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOMethodArgument.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAOText.h"
#include "korvex/QXDAOTrim.h"
#include "korvex/QXDAOTry.h"
#include "korvex/XMLNode.h"
#include "tests/support/ParsedTree.h"

namespace korvex {
namespace {

using Attributes = decltype(TreeNode::attributes);

TreeNode select(std::vector<TreeNode> children) {
  return TreeNode::element("select", {{"id", "s"}, {"result", "int"}}, std::move(children));
}
TreeNode update(std::vector<TreeNode> children) {
  return TreeNode::element("update", {{"id", "u"}}, std::move(children));
}
TreeNode cdata() { return TreeNode::leaf(XMLNodeKind::CDATASection, "cdata"); }
TreeNode instruction() { return TreeNode::leaf(XMLNodeKind::ProcessingInstruction, "pi"); }
TreeNode comment() { return TreeNode::leaf(XMLNodeKind::Comment, "note"); }

std::string messageOf(const TreeNode& definition) {
  const HandBuiltTree tree(definition);
  std::optional<QXDAOError> error;
  return QXDAOElement::elementWithXML(tree.root(), &error) ? "built" : std::string(error->message());
}

// The element of a valid definition, as its class. It does not need the tree.
template <typename T>
std::unique_ptr<T> built(const TreeNode& definition) {
  auto element = QXDAOElement::elementWithXML(HandBuiltTree(definition).root());
  T* cast = QXDAOElementCast<T>(element.get());
  EXPECT_NE(cast, nullptr);
  return std::unique_ptr<T>(cast ? static_cast<T*>(element.release()) : new T);
}

TEST(Factory, ErrorRecord) {
  const HandBuiltTree tree(update({TreeNode::element("where", {}, {TreeNode::element("nope")})}));
  std::optional<QXDAOError> error;
  EXPECT_EQ(QXDAOElement::elementWithXML(tree.root(), &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain, "korvex.dao");
  EXPECT_EQ(error->code, 0);
  ASSERT_EQ(error->userInfo.size(), 2U);
  EXPECT_EQ(std::get<std::string>(error->userInfo.at("error")), "Unknown element with type nope.");
  EXPECT_EQ(std::get<XMLNode>(error->userInfo.at("xml")), tree.root());
  EXPECT_EQ(error->origin, tree.root().firstChild().firstChild());
  EXPECT_EQ(QXDAOElement::elementWithXML(tree.root()), nullptr);
  error.emplace().code = 7;  // a record that was there is replaced
  EXPECT_EQ(QXDAOElement::elementWithXML(tree.root(), &error), nullptr);
  EXPECT_EQ(error->code, 0);
  EXPECT_EQ(QXDAOError().message(), "");
  EXPECT_FALSE(QXDAOError().xml());
}

TEST(Factory, LeavesTheSlotAloneOnSuccess) {
  const HandBuiltTree tree(update({TreeNode::text("x")}));
  std::optional<QXDAOError> error;
  error.emplace().code = 7;
  EXPECT_NE(QXDAOElement::elementWithXML(tree.root(), &error), nullptr);
  EXPECT_EQ(error->code, 7);
}

TEST(Elements, NodeKindsThatAreNeitherElementTextNorComment) {
  const Attributes id = {{"id", "x"}};
  const Attributes loop = {{"item", "i"}, {"collection", "c"}};
  const std::vector<std::pair<TreeNode, const char*>> cases = {
      {select({cdata(), instruction(), comment()}), "built"},
      {TreeNode::element("sql", id, {comment(), cdata()}), "Sql block 'x' is of wrong format."},
      {TreeNode::element("map", {{"id", "x"}, {"result", "A"}}, {cdata()}), "Map 'x' is of wrong format."},
      {TreeNode::element("map", {{"id", "x"}, {"result", "A"}}, {TreeNode::text(" \n")}),
       "Map 'x' is of wrong format."},
      {update({TreeNode::element("foreach", loop, {cdata()})}),
       "Foreach should only contain iterator expression as text."},
      {update({TreeNode::element("choose", {}, {cdata(), TreeNode::text(" \n"), comment()})}), "built"},
      {TreeNode::element("const", {{"A", "1"}}, {TreeNode::text(" ")}), "Invalid constant declaration ' '."},
      {TreeNode::element("const", {{"A", "1"}}, {instruction()}), "Invalid constant declaration ''."},
      {TreeNode::element("crypt", {{"class", "A"}, {"property", "p"}}, {TreeNode::text("\n")}),
       "Invalid crypt property declaration '\n'."},
      // Nameless nodes: an absent tag reads "(null)", an absent attribute name is no name.
      {TreeNode::element(std::nullopt, id), "Unknown root node type '(null)'."},
      {update({TreeNode::element(std::nullopt)}), "Unknown element with type (null)."},
      {update({TreeNode::element("if", {{std::nullopt, "a"}})}), "Condition 'if' is of wrong format."},
      {update({TreeNode::element("if", {{"true", std::nullopt}})}), "Condition 'if' is of wrong format."},
      {TreeNode::element("const", {{"", "1"}}), "Invalid constant declaration ''."},
      {TreeNode::element("const", {{std::nullopt, "1"}}), "Invalid constant declaration ''."},
      {TreeNode::element("sql", {{"id", std::nullopt}}), "Element name(id attribute) is empty."},
      {{XMLNodeKind::Text, "sql", "text", {{"id", "x"}}, {}}, "Element name(id attribute) is empty."},
  };
  for (const auto& [definition, message] : cases) EXPECT_EQ(messageOf(definition), message);
}

TEST(Elements, StepsAreLinkedOrDissolved) {
  const TreeNode step = TreeNode::element("step", {{"resumable", "yes"}}, {TreeNode::text("A")});
  const auto stepped = built<QXDAOMethod>(update({step, comment(), TreeNode::text("\n"), TreeNode::element("step")}));
  ASSERT_EQ(stepped->children()->size(), 2U);
  EXPECT_TRUE(stepped->steped());
  const auto* first = QXDAOElementCast<QXDAOMethodStep>(stepped->children()->front().get());
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->parentMethod(), stepped.get());
  EXPECT_TRUE(first->resumable());

  const auto dissolved = built<QXDAOMethod>(update({step}));
  ASSERT_EQ(dissolved->children()->size(), 1U);
  EXPECT_EQ(QXDAOElementCast<QXDAOText>(dissolved->children()->front().get())->expression(), "A");
  EXPECT_FALSE(dissolved->steped());
  EXPECT_TRUE(built<QXDAOMethod>(update({TreeNode::element("step")}))->children()->empty());
}

TEST(Elements, TryAndExceptAreLinked) {
  const auto method = built<QXDAOMethod>(parsed("<select id='s' result='int'><try>A<except/>\n</try></select>"));
  EXPECT_TRUE(method->tryBlock());
  const auto* block = QXDAOElementCast<QXDAOTry>(method->children()->front().get());
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(block->parentMethod(), method.get());
  EXPECT_EQ(block->exceptElement(), block->children()->back().get());
  EXPECT_EQ(block->exceptElement()->tryElement(), block);
}

// What failing elements have set before: links, and the method's attributes.
TEST(Elements, FailuresComeInOrder) {
  const auto initialised = [](auto& element, const char* xml, auto*... parent) {
    element.initWithXML(HandBuiltTree(parsed(xml)).root(), parent...);
  };
  for (const char* xml :
       {"<try x=''><except/></try>", "<try><except/><nope/></try>", "<try>x<except><nope/></except></try>"}) {
    QXDAOMethod method;
    QXDAOTry block;
    initialised(block, xml, &method);
    EXPECT_TRUE(method.tryBlock()) << xml;
    EXPECT_EQ(block.exceptElement(), nullptr) << xml;
  }
  for (const auto& [xml, registered] : {std::pair("<except x=''/>", false), {"<except><nope/></except>", true}}) {
    QXDAOMethod method;
    QXDAOTry block;
    QXDAOExcept except;
    block.setParentMethod(&method);
    initialised(except, xml, &block);
    EXPECT_EQ(block.exceptElement(), registered ? &except : nullptr) << xml;
    EXPECT_EQ(except.tryElement(), registered ? &block : nullptr) << xml;
  }
  for (const auto& [xml, resumable] : {std::pair("<update id='a' foreach='b' resumable='1'/>", true),
                                       {"<update id='a' foreach='' resumable='1'/>", false}}) {
    QXDAOMethod method;
    method.initNamedElementWithXML(HandBuiltTree(parsed(xml)).root());
    EXPECT_EQ(method.foreachResumable(), resumable) << xml;
    EXPECT_FALSE(method.foreach ());
  }
}

TEST(Elements, EngineSlotsStartEmptyAndKeepWhatTheyGet) {
  struct Plan : QXDAOEngineValue {};
  const auto method = built<QXDAOMethod>(update({TreeNode::text("A")}));
  EXPECT_FALSE(method->_ignoreCounter || method->_counter || method->_cls || method->_mappingInfo || method->module());
  EXPECT_EQ(method->_mappingSequence, 0);
  auto* text = QXDAOElementCast<QXDAOText>(method->children()->front().get());
  auto list = std::make_unique<QXDAOEngineList>();
  list->push_back(std::make_unique<Plan>());
  text->setSpeedyList(std::move(list));
  EXPECT_EQ(text->speedyList()->size(), 1U);
  EXPECT_TRUE(method->arguments() && method->arguments()->empty());
  EXPECT_FALSE(QXDAOMethodArgument().notNull());
}

// Engines store these numbers and are built separately.
TEST(Elements, NumbersOfEnumeratorsNeverChange) {
  const std::vector<std::vector<std::uint64_t>> enumerations = {
      {QXDAOOperationSelect, QXDAOOperationUpdate, QXDAOOperationInsert, QXDAOOperationDelete, QXDAOOperationUpgrade},
      {QXDAOSelectResultTypeInt, QXDAOSelectResultTypeLongLong, QXDAOSelectResultTypeBool, QXDAOSelectResultTypeDouble,
       QXDAOSelectResultTypeString, QXDAOSelectResultTypeBinary, QXDAOSelectResultTypeColumnMap,
       QXDAOSelectResultTypeObject, QXDAOSelectResultTypeMappedObject},
      {QXDAOConditionTypeIf, QXDAOConditionTypeWhen, QXDAOConditionTypeOtherwise},
      {QXDAOTrimOnVoidTypeNone, QXDAOTrimOnVoidTypeQuit, QXDAOTrimOnVoidTypeIgnoreAfter},
      {QXDAOTextSpeedyStatusNone, QXDAOTextSpeedyStatusValid, QXDAOTextSpeedyStatusInvalid},
      {QXDAOTokenTypeName, QXDAOTokenTypeNumber, QXDAOTokenTypeString, QXDAOTokenTypeOperator, QXDAOTokenTypeBracket},
  };
  for (const auto& numbers : enumerations) {
    for (std::size_t number = 0; number < numbers.size(); ++number) EXPECT_EQ(numbers[number], number);
  }
}

TEST(MappingSequence, CountsUp) {
  EXPECT_EQ(GetQXDAOMappingSequence(), 0);
  IncreaseQXDAOMappingSequence();
  EXPECT_EQ(GetQXDAOMappingSequence(), 1);
}

TEST(Arena, ObjectsAreAligned) {
  Arena arena(64);
  for (std::size_t count = 1; count < 1000; ++count) {
    std::fill_n(arena.allocateCharacters(count), count, 'x');
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(arena.allocate(8)) % Arena::alignment, 0U) << count;
  }
}

}  // namespace
}  // namespace korvex
