// What several elements do with their attributes and the nodes below them.
#pragma once

#include <string>
#include <string_view>

#include "Platform/Strings.h"
#include "Platform/XMLNode.h"

namespace korvex {

// The node to point at when a child breaks a rule: the child when it is an element, which has a
// place of its own in the source, else its parent.
[[nodiscard]] inline XMLNode nodeAtFault(const XMLNode& child, const XMLNode& parent) {
  return child.kind() == XMLNodeKind::Element ? child : parent;
}

// The text of an element that may hold nothing but text and comments.
struct PlainText {
  std::string text;  // the pieces before the offender, joined with nothing between them
  XMLNode offender;  // the first node of another kind; null when there is none
};

[[nodiscard]] PlainText plainTextOf(const XMLNode& element, std::string_view (*piece)(std::string_view text));

}  // namespace korvex
