// A definition's nodes without its faults.
#pragma once

#include <deque>
#include <string>

#include "checks/Culprits.h"
#include "korvex/XMLNode.h"

namespace korvex {

// A copy of a tree whose faults can be repaired. Nodes keep the offsets and the texts of the original, which must live
// as long.
class RepairedTree final : public XMLTree {
 public:
  // Copies up to that many nodes.
  RepairedTree(const XMLNode& definition, std::size_t maxNodes);
  RepairedTree(const RepairedTree&) = delete;
  RepairedTree& operator=(const RepairedTree&) = delete;

  // Whether all nodes could be copied.
  [[nodiscard]] bool isWhole() const { return _room > 0; }
  // Handles that were read before a repair are outdated after it.
  [[nodiscard]] XMLNode root() const { return {*this, &_nodes.front()}; }
  // False if the repair changes nothing that is in the tree.
  bool repair(const Repair& repair);

  [[nodiscard]] XMLNodeKind kind(NodeHandle node) const override { return at(node).kind; }
  [[nodiscard]] OptionalStringView name(NodeHandle node) const override {
    return at(node).kind == XMLNodeKind::Element ? at(node).content : OptionalStringView();
  }
  [[nodiscard]] OptionalStringView text(NodeHandle node) const override {
    return at(node).kind == XMLNodeKind::Text ? at(node).content : OptionalStringView();
  }
  [[nodiscard]] NodeHandle firstChild(NodeHandle node) const override { return at(node).firstChild; }
  [[nodiscard]] NodeHandle nextSibling(NodeHandle node) const override { return at(node).next; }
  [[nodiscard]] AttributeHandle firstAttribute(NodeHandle node) const override { return at(node).firstAttribute; }
  [[nodiscard]] AttributeHandle nextAttribute(AttributeHandle attribute) const override { return its(attribute).next; }
  [[nodiscard]] OptionalStringView attributeName(AttributeHandle attribute) const override {
    return its(attribute).name;
  }
  [[nodiscard]] OptionalStringView attributeValue(AttributeHandle attribute) const override {
    return its(attribute).value;
  }
  [[nodiscard]] std::size_t offset(NodeHandle node) const override { return at(node).offset; }

 private:
  struct CopiedAttribute {
    OptionalStringView name;
    OptionalStringView value;
    CopiedAttribute* next = nullptr;
  };
  struct CopiedNode {
    XMLNodeKind kind{};
    OptionalStringView content;
    std::size_t offset = 0;
    CopiedNode* firstChild = nullptr;
    CopiedNode* next = nullptr;
    CopiedAttribute* firstAttribute = nullptr;
  };

  static const CopiedNode& at(NodeHandle node) { return *static_cast<const CopiedNode*>(node); }
  static const CopiedAttribute& its(AttributeHandle attribute) {
    return *static_cast<const CopiedAttribute*>(attribute);
  }

  CopiedNode* copy(const XMLNode& node);
  CopiedNode** linkTo(const CopiedNode& node);
  bool remove(const CopiedNode& node);
  bool replaceByContent(const CopiedNode& node);
  bool changeAttributes(CopiedNode& node, const Repair& repair);

  std::deque<CopiedNode> _nodes;  // the root first
  std::deque<CopiedAttribute> _attributes;
  std::deque<std::string> _values;  // that repairs wrote
  std::size_t _room;
};

}  // namespace korvex
