#include "Platform/XMLNode.h"

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

OptionalStringView XMLAttribute::name() const {
  if (!_handle) return std::nullopt;
  return _tree->attributeName(_handle);
}

OptionalStringView XMLAttribute::stringValue() const {
  if (!_handle) return std::nullopt;
  return _tree->attributeValue(_handle);
}

XMLAttribute XMLAttribute::next() const {
  if (!_handle) return {};
  return {*_tree, _tree->nextAttribute(_handle)};
}

XMLNodeKind XMLNode::kind() const { return _handle ? _tree->kind(_handle) : XMLNodeKind{}; }

OptionalStringView XMLNode::name() const {
  if (!_handle) return std::nullopt;
  return _tree->name(_handle);
}

OptionalStringView XMLNode::text() const {
  if (kind() != XMLNodeKind::Text) return std::nullopt;
  return _tree->text(_handle);
}

OptionalString XMLNode::stringValue() const {
  if (kind() != XMLNodeKind::Element) return ownedString(text());
  std::string gathered;
  appendTextBelow(*this, gathered);
  return gathered;
}

XMLNode XMLNode::firstChild() const {
  if (!_handle) return {};
  return {*_tree, _tree->firstChild(_handle)};
}

XMLNode XMLNode::next() const {
  if (!_handle) return {};
  return {*_tree, _tree->nextSibling(_handle)};
}

std::size_t XMLNode::childCount() const {
  std::size_t count = 0;
  for (XMLNode child = firstChild(); child; child = child.next()) ++count;
  return count;
}

XMLRange<XMLAttribute> XMLNode::attributes() const {
  if (!_handle) return XMLRange<XMLAttribute>({});
  return XMLRange<XMLAttribute>({*_tree, _tree->firstAttribute(_handle)});
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

std::optional<XMLPosition> XMLNode::position() const {
  if (!_handle) return std::nullopt;
  return _tree->position(_handle);
}

}  // namespace korvex
