#include "checks/RepairedTree.h"

#include <algorithm>

namespace korvex {

RepairedTree::RepairedTree(const XMLNode& definition, std::size_t maxNodes) : _room(maxNodes) { copy(definition); }

RepairedTree::CopiedNode* RepairedTree::copy(const XMLNode& node) {
  if (_room > 0) --_room;
  CopiedNode& copied = _nodes.emplace_back();
  copied.kind = node.kind();
  copied.content = node.kind() == XMLNodeKind::Element ? node.name() : node.text();
  copied.offset = node.offset();
  CopiedAttribute** nextAttribute = &copied.firstAttribute;
  for (const XMLAttribute& attribute : node.attributes()) {
    *nextAttribute = &_attributes.emplace_back(CopiedAttribute{attribute.name(), attribute.stringValue()});
    nextAttribute = &(*nextAttribute)->next;
  }
  CopiedNode** nextChild = &copied.firstChild;
  for (XMLNode child = node.firstChild(); child && isWhole(); child = child.next()) {
    *nextChild = copy(child);
    nextChild = &(*nextChild)->next;
  }
  return &copied;
}

bool RepairedTree::repair(const Repair& repair) {
  const auto found =
      std::find_if(_nodes.begin(), _nodes.end(), [&](const CopiedNode& node) { return node.offset == repair.node; });
  if (found == _nodes.end()) return false;
  switch (repair.kind) {
    case Repair::Kind::None:
      return false;
    case Repair::Kind::RemoveNode:
      return remove(*found);
    case Repair::Kind::ReplaceByContent:
      return replaceByContent(*found);
    case Repair::Kind::Rename:
      found->content = repair.set;
      return true;
    case Repair::Kind::ChangeAttributes:
      return changeAttributes(*found, repair);
  }
  return false;
}

// What leads to the node; null for the root.
RepairedTree::CopiedNode** RepairedTree::linkTo(const CopiedNode& node) {
  for (CopiedNode& other : _nodes) {
    if (other.firstChild == &node) return &other.firstChild;
    if (other.next == &node) return &other.next;
  }
  return nullptr;
}

bool RepairedTree::remove(const CopiedNode& node) {
  CopiedNode** link = linkTo(node);
  if (link) *link = node.next;
  return link != nullptr;
}

bool RepairedTree::replaceByContent(const CopiedNode& node) {
  CopiedNode** link = linkTo(node);
  if (!link) return false;
  while (*link) {
    CopiedNode* sibling = *link;
    if (sibling->content == node.content) {
      *link = sibling->firstChild;
      while (*link) link = &(*link)->next;
      *link = sibling->next;
    } else {
      link = &sibling->next;
    }
  }
  return true;
}

bool RepairedTree::changeAttributes(CopiedNode& node, const Repair& repair) {
  bool changed = false;
  CopiedAttribute** link = &node.firstAttribute;
  while (*link) {
    const bool goes = (*link)->name == repair.removed || (*link)->name == repair.set;
    changed = changed || goes;
    if (goes) {
      *link = (*link)->next;
    } else {
      link = &(*link)->next;
    }
  }
  if (repair.set.empty()) return changed;
  *link = &_attributes.emplace_back(CopiedAttribute{repair.set, _values.emplace_back(repair.value)});
  return true;
}

}  // namespace korvex
