#include "korvex/XMLNode.h"

#include <algorithm>

namespace korvex {

namespace {

// Appends the text of every text node below an element. The recursion is as deep as the document.
void appendTextBelow(const XMLNode& element, std::string& text) {
  for (const XMLNode& child : element.children()) {
    if (child.kind() == XMLNodeKind::Text) {
      text.append(child.text().value_or(std::string_view()));
    } else if (child.kind() == XMLNodeKind::Element) {
      appendTextBelow(child, text);
    }
  }
}

}  // namespace

OptionalString XMLNode::stringValue() const {
  if (kind() != XMLNodeKind::Element) return ownedString(text());
  std::string gathered;
  appendTextBelow(*this, gathered);
  return gathered;
}

std::size_t XMLNode::childCount() const {
  std::size_t count = 0;
  for (XMLNode child = firstChild(); child; child = child.next()) ++count;
  return count;
}

std::size_t XMLNode::attributeCount() const {
  const auto all = attributes();
  return static_cast<std::size_t>(std::distance(all.begin(), all.end()));
}

XMLAttribute XMLNode::onlyAttribute() const {
  const XMLAttribute first = *attributes().begin();
  return first.next() ? XMLAttribute() : first;
}

XMLAttribute XMLNode::attributeForName(std::string_view attributeName) const {
  for (const XMLAttribute& attribute : attributes()) {
    if (attribute.name() == attributeName) return attribute;
  }
  return {};
}

OptionalStringView XMLNode::valueOfAttribute(std::string_view attributeName) const {
  return attributeForName(attributeName).stringValue();
}

void XMLNode::readAttributes(const std::string_view* names, OptionalStringView* values, std::size_t count) const {
  for (const XMLAttribute& attribute : attributes()) {
    const auto place = static_cast<std::size_t>(std::find(names, names + count, attribute.name()) - names);
    if (place < count && !values[place]) values[place] = attribute.stringValue();
  }
}

std::optional<XMLPosition> XMLNode::position() const {
  if (!_handle) return std::nullopt;
  return _tree->position(_handle);
}

}  // namespace korvex
