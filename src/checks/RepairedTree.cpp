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
      return redirect(*found, found->next);
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

// What led to the node leads to the target from now on. Nothing leads to the root.
bool RepairedTree::redirect(const CopiedNode& node, CopiedNode* target) {
  for (CopiedNode& other : _nodes) {
    for (CopiedNode** link : {&other.firstChild, &other.next}) {
      if (*link != &node) continue;
      *link = target;
      return true;
    }
  }
  return false;
}

bool RepairedTree::replaceByContent(CopiedNode& node) {
  CopiedNode* behind = node.next;
  while (behind && behind->content != node.content) behind = behind->next;
  if (behind) replaceByContent(*behind);
  if (!node.firstChild) return redirect(node, node.next);
  if (!redirect(node, node.firstChild)) return false;
  CopiedNode* last = node.firstChild;
  while (last->next) last = last->next;
  last->next = node.next;
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
