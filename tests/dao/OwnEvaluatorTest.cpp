// An engine that links korvex::dao with its own evaluator: which decides what can be tokenised.
#include <gtest/gtest.h>

#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOEvaluator.h"
#include "tests/support/HandBuiltTree.h"

namespace korvex {

QXDAOTokenList QXDAOEvaluator::buildTokenListWithExpression(std::string_view expression) {
  if (expression != "#") return {};
  return {{QXDAOTokenTypeOperator, "mine"}};
}

namespace {

bool builds(const char* expression) {
  const HandBuiltTree tree(
      TreeNode::element("update", {{"id", "u"}}, {TreeNode::element("if", {{"true", expression}})}));
  return QXDAOElement::elementWithXML(tree.root()) != nullptr;
}

TEST(OwnEvaluator, Decides) {
  EXPECT_TRUE(builds(" # "));
  EXPECT_FALSE(builds("a > 1"));
}

}  // namespace
}  // namespace korvex
