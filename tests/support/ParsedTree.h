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

inline Hand handOf(const pugi::xml_node& node) {
  Hand hand{kindOf(node), node.name(), node.value(), {}, {}, node.offset_debug()};
  if (hand.kind == XMLNodeKind::Element) --hand.offset;  // before the "<"
  for (const pugi::xml_attribute& attribute : node.attributes()) {
    hand.attributes.emplace_back(attribute.name(), attribute.value());
  }
  for (const pugi::xml_node& child : node.children()) hand.children.push_back(handOf(child));
  return hand;
}

// One element with what is below it; white space between elements is no text.
inline Hand parsed(const std::string& xml) {
  pugi::xml_document document;
  document.load_string(xml.c_str(), pugi::parse_default | pugi::parse_comments | pugi::parse_pi);
  return handOf(document.document_element());
}

}  // namespace korvex
