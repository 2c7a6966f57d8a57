// A document tree written down by hand: what no parser delivers (CDATA sections, nameless nodes,
// texts of white space) can be put in front of the elements with it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "korvex/OptionalString.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/XMLNode.h"

namespace korvex {

struct Hand {
  XMLNodeKind kind = XMLNodeKind::Element;
  OptionalString name;
  OptionalString content;
  std::vector<std::pair<OptionalString, OptionalString>> attributes;
  std::vector<Hand> children;
  std::ptrdiff_t offset = -1;  // in the text it was read from

  static Hand element(OptionalString tag, decltype(attributes) attributes = {}, std::vector<Hand> children = {}) {
    return {XMLNodeKind::Element, std::move(tag), std::nullopt, std::move(attributes), std::move(children)};
  }
  static Hand text(std::string content) { return leaf(XMLNodeKind::Text, std::move(content)); }
  static Hand leaf(XMLNodeKind kind, std::string content) { return {kind, std::nullopt, std::move(content), {}, {}}; }
};

class HandBuiltTree final : public XMLTree {
 public:
  explicit HandBuiltTree(Hand root) : _top{Hand::element("document", {}, {std::move(root)})} {}
  HandBuiltTree(const HandBuiltTree&) = delete;
  HandBuiltTree& operator=(const HandBuiltTree&) = delete;

  [[nodiscard]] XMLNode root() const { return {*this, _top.children.data()}; }
  [[nodiscard]] std::ptrdiff_t offsetOf(const XMLNode& node) const { return offsetBelow(_top, node); }

  XMLNodeKind kind(NodeHandle node) const override { return hand(node).kind; }
  OptionalStringView name(NodeHandle node) const override { return hand(node).name; }
  OptionalStringView text(NodeHandle node) const override {
    if (hand(node).kind != XMLNodeKind::Text) return std::nullopt;
    return hand(node).content;
  }
  NodeHandle firstChild(NodeHandle node) const override { return firstOf(hand(node).children); }
  NodeHandle nextSibling(NodeHandle node) const override { return nextIn(holderOf(_top, node)->children, node); }
  AttributeHandle firstAttribute(NodeHandle node) const override { return firstOf(hand(node).attributes); }
  AttributeHandle nextAttribute(AttributeHandle attribute) const override {
    return nextIn(ownerOf(_top, attribute)->attributes, attribute);
  }
  OptionalStringView attributeName(AttributeHandle attribute) const override { return pair(attribute).first; }
  OptionalStringView attributeValue(AttributeHandle attribute) const override { return pair(attribute).second; }

 private:
  using Pair = std::pair<OptionalString, OptionalString>;
  static const Hand& hand(NodeHandle node) { return *static_cast<const Hand*>(node); }
  static const Pair& pair(AttributeHandle attribute) { return *static_cast<const Pair*>(attribute); }

  template <typename Item>
  static const void* firstOf(const std::vector<Item>& items) {
    return items.empty() ? nullptr : items.data();
  }
  template <typename Item>
  static const void* nextIn(const std::vector<Item>& items, const void* item) {
    const Item* next = static_cast<const Item*>(item) + 1;
    return next == items.data() + items.size() ? nullptr : next;
  }
  template <typename Item>
  static bool holds(const std::vector<Item>& items, const void* item) {
    const auto* first = static_cast<const void*>(items.data());
    const auto* last = static_cast<const void*>(items.data() + items.size());
    return !std::less<>()(item, first) && std::less<>()(item, last);
  }
  static const Hand* holderOf(const Hand& below, const void* node) {
    if (holds(below.children, node)) return &below;
    return firstFound(below, node, holderOf);
  }
  static const Hand* ownerOf(const Hand& below, const void* attribute) {
    if (holds(below.attributes, attribute)) return &below;
    return firstFound(below, attribute, ownerOf);
  }
  static const Hand* firstFound(const Hand& below, const void* item, const Hand* (*find)(const Hand&, const void*)) {
    for (const Hand& child : below.children) {
      if (const Hand* found = find(child, item)) return found;
    }
    return nullptr;
  }

  [[nodiscard]] std::ptrdiff_t offsetBelow(const Hand& hand, const XMLNode& node) const {
    std::ptrdiff_t offset = -1;
    for (const Hand& child : hand.children) {
      const bool isNode = XMLNode(*this, &child) == node;
      offset = std::max(offset, isNode ? child.offset : offsetBelow(child, node));
    }
    return offset;
  }

  Hand _top;
};

}  // namespace korvex
