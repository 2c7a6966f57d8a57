// Pack definitions for the tests of packing.
#pragma once

#include <memory>
#include <string>

#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPack.h"
#include "tests/support/HandBuiltTree.h"

namespace korvex {

// A pack of these properties, two at least, for the column "info".
inline std::unique_ptr<QXDAOPack> packOf(const std::string& properties) {
  const HandBuiltTree tree(TreeNode::element("pack", {{"as", "info"}, {"properties", properties}}));
  auto element = QXDAOElement::elementWithXML(tree.root());
  return std::unique_ptr<QXDAOPack>(static_cast<QXDAOPack*>(element.release()));
}

}  // namespace korvex
