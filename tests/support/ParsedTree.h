// A tree of XML text, for tests of the elements without the loader.
#pragma once

#include <pugixml.hpp>
#include <string>

#include "tests/support/HandBuiltTree.h"

namespace korvex {

inline XMLNodeKind kindOf(const pugi::xml_node& node) {
  switch (node.type()) {
    case pugi::node_element:
      return XMLNodeKind::Element;
    case pugi::node_comment:
      return XMLNodeKind::Comment;
    case pugi::node_pi:
      return XMLNodeKind::ProcessingInstruction;
    default:
      return XMLNodeKind::Text;
  }
}

inline TreeNode treeNodeOf(const pugi::xml_node& node) {
  TreeNode copy{kindOf(node), node.name(), node.value(), {}, {}, node.offset_debug()};
  if (copy.kind == XMLNodeKind::Element) --copy.offset;  // before the "<"
  for (const pugi::xml_attribute& attribute : node.attributes()) {
    copy.attributes.emplace_back(attribute.name(), attribute.value());
  }
  for (const pugi::xml_node& child : node.children()) copy.children.push_back(treeNodeOf(child));
  return copy;
}

// One element with what is below it; white space between elements is no text.
inline TreeNode parsed(const std::string& xml) {
  pugi::xml_document document;
  document.load_string(xml.c_str(), pugi::parse_default | pugi::parse_comments | pugi::parse_pi);
  return treeNodeOf(document.document_element());
}

}  // namespace korvex
