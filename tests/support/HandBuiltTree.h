// A document tree that a test writes out: what no parser delivers (CDATA sections, nameless nodes,
// white-space texts) can be given to the elements this way.
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

struct TreeNode {
  XMLNodeKind kind = XMLNodeKind::Element;
  OptionalString name;
  OptionalString content;
  std::vector<std::pair<OptionalString, OptionalString>> attributes;
  std::vector<TreeNode> children;
  std::ptrdiff_t offset = -1;  // in the text it was read from

  static TreeNode element(OptionalString tag, decltype(attributes) attributes = {},
                          std::vector<TreeNode> children = {}) {
    return {XMLNodeKind::Element, std::move(tag), std::nullopt, std::move(attributes), std::move(children)};
  }
  static TreeNode text(std::string content) { return leaf(XMLNodeKind::Text, std::move(content)); }
  static TreeNode leaf(XMLNodeKind kind, std::string content) {
    return {kind, std::nullopt, std::move(content), {}, {}};
  }
};

class HandBuiltTree final : public XMLTree {
 public:
  explicit HandBuiltTree(TreeNode root) : _top{TreeNode::element("document", {}, {std::move(root)})} {}
  HandBuiltTree(const HandBuiltTree&) = delete;
  HandBuiltTree& operator=(const HandBuiltTree&) = delete;

  [[nodiscard]] XMLNode root() const { return {*this, _top.children.data()}; }
  [[nodiscard]] std::ptrdiff_t offsetOf(const XMLNode& node) const { return offsetBelow(_top, node); }

  XMLNodeKind kind(NodeHandle node) const override { return treeNode(node).kind; }
  OptionalStringView name(NodeHandle node) const override { return treeNode(node).name; }
  OptionalStringView text(NodeHandle node) const override {
    if (treeNode(node).kind != XMLNodeKind::Text) return std::nullopt;
    return treeNode(node).content;
  }
  NodeHandle firstChild(NodeHandle node) const override { return firstOf(treeNode(node).children); }
  NodeHandle nextSibling(NodeHandle node) const override { return nextIn(parentOf(_top, node)->children, node); }
  AttributeHandle firstAttribute(NodeHandle node) const override { return firstOf(treeNode(node).attributes); }
  AttributeHandle nextAttribute(AttributeHandle attribute) const override {
    return nextIn(ownerOf(_top, attribute)->attributes, attribute);
  }
  OptionalStringView attributeName(AttributeHandle attribute) const override { return pair(attribute).first; }
  OptionalStringView attributeValue(AttributeHandle attribute) const override { return pair(attribute).second; }

 private:
  using Pair = std::pair<OptionalString, OptionalString>;
  static const TreeNode& treeNode(NodeHandle node) { return *static_cast<const TreeNode*>(node); }
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
  static const TreeNode* parentOf(const TreeNode& below, const void* node) {
    if (holds(below.children, node)) return &below;
    return firstFound(below, node, parentOf);
  }
  static const TreeNode* ownerOf(const TreeNode& below, const void* attribute) {
    if (holds(below.attributes, attribute)) return &below;
    return firstFound(below, attribute, ownerOf);
  }
  static const TreeNode* firstFound(const TreeNode& below, const void* item,
                                    const TreeNode* (*find)(const TreeNode&, const void*)) {
    for (const TreeNode& child : below.children) {
      if (const TreeNode* found = find(child, item)) return found;
    }
    return nullptr;
  }

  [[nodiscard]] std::ptrdiff_t offsetBelow(const TreeNode& below, const XMLNode& node) const {
    std::ptrdiff_t offset = -1;
    for (const TreeNode& child : below.children) {
      const bool isNode = XMLNode(*this, &child) == node;
      offset = std::max(offset, isNode ? child.offset : offsetBelow(child, node));
    }
    return offset;
  }

  TreeNode _top;
};

}  // namespace korvex
