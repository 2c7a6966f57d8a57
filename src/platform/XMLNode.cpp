#include "korvex/XMLNode.h"

#include <algorithm>
#include <array>

namespace korvex {

namespace {

constexpr std::size_t maxBatch = 8;  // attributes that are read at once

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
  for (XMLTree::NodeHandle child = _node.firstChild; child; child = _tree->nextSibling(child)) ++count;
  return count;
}

std::size_t XMLNode::attributeCount() const {
  const auto all = attributes();
  return static_cast<std::size_t>(std::distance(all.begin(), all.end()));
}

XMLAttribute XMLNode::onlyAttribute() const {
  const XMLAttribute first = *attributes().begin();
  return first.isLast() ? first : XMLAttribute();
}

XMLAttribute XMLNode::attributeForName(std::string_view attributeName) const {
  for (const XMLAttribute& attribute : attributes()) {
    if (attribute.name() == attributeName) return attribute;
  }
  return {};
}

OptionalStringView XMLNode::valueOfAttribute(std::string_view attributeName) const {
  return valuesOfAttributes(attributeName).front();
}

void XMLNode::readAttributes(const std::string_view* names, OptionalStringView* values, std::size_t count) const {
  std::array<XMLTree::Attribute, maxBatch> batch;
  for (XMLTree::AttributeHandle next = _node.firstAttribute; next;) {
    const std::size_t size = _tree->readAttributes(next, batch.data(), batch.size());
    for (std::size_t at = 0; at < size; ++at) {
      const auto place = static_cast<std::size_t>(std::find(names, names + count, batch[at].name) - names);
      if (place < count && !values[place]) values[place] = batch[at].value;
    }
  }
}

std::optional<XMLPosition> XMLNode::position() const {
  if (!_handle) return std::nullopt;
  return _tree->position(_handle);
}

}  // namespace korvex
