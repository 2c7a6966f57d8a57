// Expands the list references of any text, and compares with a simple implementation of their rules.
#include "fuzz/Disagreement.h"
#include "fuzz/Input.h"
#include "fuzz/PlainListReferences.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOText.h"
#include "tests/support/HandBuiltTree.h"

namespace korvex {
namespace {

void compare(std::string_view input) {
  QXDAOText text;
  text.initWithText(input);
  expectSame("a text", text.expression().value(), expandedPlainly(input));

  const HandBuiltTree tree(TreeNode::text(std::string(input)));
  text.initWithXML(tree.root());
  expectSame("a node's text", text.expression().value(), expandedPlainly(textOf(trimmedPlainly(unitsOf(input)))));
}

}  // namespace
}  // namespace korvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = korvex::inputOf(data, size);
  if (!korvex::mayGrowLarge(input)) korvex::compare(input);
  return 0;
}
