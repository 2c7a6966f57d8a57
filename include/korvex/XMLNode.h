// The document tree that the elements read: handles to a tree that a parser owns.
//
// To plug in a parser, derive from XMLTree; nothing of the document is copied. XMLNode and
// XMLAttribute are values that refer to a node or attribute of such a tree and cache what the tree
// reported about it. They and the string views that they return are valid while the tree is alive and
// unchanged. Reading is thread-safe if the tree's own operations are.
#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/OptionalString.h"

namespace korvex {

// The values are those of the DOM's nodeType and of libxml2's xmlElementType. A tree may contain
// kinds that are not listed here; the elements ignore or reject them.
enum class XMLNodeKind : int {
  Element = 1,
  Text = 3,
  CDATASection = 4,
  ProcessingInstruction = 7,
  Comment = 8,
};

// A position in the source text. Line and column count from 1, columns in Unicode code points; LF,
// CR LF and a lone CR each end a line.
struct XMLPosition {
  std::size_t line = 1;
  std::size_t column = 1;

  bool operator==(const XMLPosition&) const = default;
};

// The interface that a parser implements. Node and attribute handles are opaque and belong to the
// tree. Null means "none" and is never passed in.
class KORVEX_EXPORT XMLTree {
 public:
  using NodeHandle = const void*;
  using AttributeHandle = const void*;

  // A node, with the handles of its neighbours.
  struct Node {
    XMLNodeKind kind{};
    OptionalStringView content;  // as name() for an element, as text() for a text node; absent for other kinds
    NodeHandle firstChild = nullptr;
    NodeHandle nextSibling = nullptr;
    AttributeHandle firstAttribute = nullptr;
  };
  struct Attribute {
    OptionalStringView name;
    OptionalStringView value;
  };

  [[nodiscard]] virtual XMLNodeKind kind(NodeHandle node) const = 0;
  // The tag of an element; absent for a node without a name.
  [[nodiscard]] virtual OptionalStringView name(NodeHandle node) const = 0;
  // The decoded characters of a node of the kind Text; absent for every other kind. The elements
  // see a CDATA section only if the tree presents it as Text.
  [[nodiscard]] virtual OptionalStringView text(NodeHandle node) const = 0;
  // Children and attributes come in document order; null after the last one.
  [[nodiscard]] virtual NodeHandle firstChild(NodeHandle node) const = 0;
  [[nodiscard]] virtual NodeHandle nextSibling(NodeHandle node) const = 0;
  [[nodiscard]] virtual AttributeHandle firstAttribute(NodeHandle node) const = 0;
  [[nodiscard]] virtual AttributeHandle nextAttribute(AttributeHandle attribute) const = 0;
  [[nodiscard]] virtual OptionalStringView attributeName(AttributeHandle attribute) const = 0;
  // The decoded value of an attribute; empty, not absent, if written as "".
  [[nodiscard]] virtual OptionalStringView attributeValue(AttributeHandle attribute) const = 0;
  // Where the node's markup starts (the "<" of a start tag); absent if the parser does not know.
  [[nodiscard]] virtual std::optional<XMLPosition> position(NodeHandle /*node*/) const { return std::nullopt; }
  // The parsed text, absent if the parser does not keep it, and the byte offset of the node's markup in it.
  [[nodiscard]] virtual OptionalStringView source() const { return std::nullopt; }
  [[nodiscard]] virtual std::size_t offset(NodeHandle /*node*/) const { return 0; }

  // All reading goes through these two operations. The defaults call the ones above; override them for
  // speed if the tree can answer in one step.
  [[nodiscard]] virtual Node node(NodeHandle node) const {
    const XMLNodeKind itsKind = kind(node);
    return {itsKind, itsKind == XMLNodeKind::Element ? name(node) : text(node), firstChild(node), nextSibling(node),
            firstAttribute(node)};
  }
  // Reads up to `room` attributes, starting at `next`, and returns how many were read. Advances `next` to
  // the first attribute not read; null after the last.
  [[nodiscard]] virtual std::size_t readAttributes(AttributeHandle& next, Attribute* result, std::size_t room) const {
    std::size_t count = 0;
    for (; next && count < room; next = nextAttribute(next)) {
      result[count++] = {attributeName(next), attributeValue(next)};
    }
    return count;
  }

 protected:
  XMLTree() = default;
  XMLTree(const XMLTree&) = default;
  XMLTree(XMLTree&&) = default;
  XMLTree& operator=(const XMLTree&) = default;
  XMLTree& operator=(XMLTree&&) = default;
  ~XMLTree() = default;
};

// One attribute of an element, or none.
class XMLAttribute {
 public:
  XMLAttribute() = default;
  XMLAttribute(const XMLTree& tree, XMLTree::AttributeHandle handle) : _tree(&tree), _handle(handle), _next(handle) {
    if (handle) static_cast<void>(tree.readAttributes(_next, &_attribute, 1));
  }

  explicit operator bool() const { return _handle != nullptr; }
  // Equal if both refer to the same attribute of the same tree.
  bool operator==(const XMLAttribute& other) const { return _tree == other._tree && _handle == other._handle; }

  // Absent on a null attribute.
  [[nodiscard]] OptionalStringView name() const { return _attribute.name; }
  [[nodiscard]] OptionalStringView stringValue() const { return _attribute.value; }
  // The attribute after this one; null after the last.
  [[nodiscard]] XMLAttribute next() const { return _next ? XMLAttribute(*_tree, _next) : XMLAttribute(); }
  [[nodiscard]] bool isLast() const { return !_next; }

 private:
  const XMLTree* _tree = nullptr;
  XMLTree::AttributeHandle _handle = nullptr;
  XMLTree::AttributeHandle _next = nullptr;
  XMLTree::Attribute _attribute;
};

// A node or attribute and all that follow it, for range-based for loops.
template <typename Item>
class XMLRange {
 public:
  class iterator {
   public:
    using iterator_category = std::input_iterator_tag;  // the item is stored in the iterator
    using value_type = Item;
    using difference_type = std::ptrdiff_t;
    using pointer = const Item*;
    using reference = const Item&;

    iterator() = default;
    explicit iterator(Item item) : _item(item) {}
    reference operator*() const { return _item; }
    pointer operator->() const { return &_item; }
    iterator& operator++() {
      _item = _item.next();
      return *this;
    }
    iterator operator++(int) {
      iterator before = *this;
      ++*this;
      return before;
    }
    // All end iterators are equal, whichever tree they came from.
    bool operator==(const iterator& other) const { return (!_item && !other._item) || _item == other._item; }

   private:
    Item _item;
  };

  explicit XMLRange(Item first) : _first(first) {}
  [[nodiscard]] iterator begin() const { return iterator(_first); }
  [[nodiscard]] iterator end() const { return iterator(); }

 private:
  Item _first;
};

// One node of a document tree, or none. On a null node every operation returns "absent" or "none", so
// chains such as node.firstChild().name() need no intermediate checks.
class KORVEX_EXPORT XMLNode {
 public:
  XMLNode() = default;
  XMLNode(const XMLTree& tree, XMLTree::NodeHandle handle) : _tree(&tree), _handle(handle) {
    if (handle) _node = tree.node(handle);
  }

  explicit operator bool() const { return _handle != nullptr; }
  // Equal if both refer to the same node of the same tree.
  bool operator==(const XMLNode& other) const { return _tree == other._tree && _handle == other._handle; }

  // 0, which is no node's kind, on a null node.
  [[nodiscard]] XMLNodeKind kind() const { return _node.kind; }
  // The tag of an element; absent for nodes without a name.
  [[nodiscard]] OptionalStringView name() const {
    return kind() == XMLNodeKind::Element || !_handle ? _node.content : _tree->name(_handle);
  }
  // The text of a text node; for an element, the concatenated text of all text nodes below it, in
  // document order (empty if there are none); absent for other nodes. Recurses as deep as the tree.
  [[nodiscard]] OptionalString stringValue() const;
  // The characters of a text node, not copied; absent for every other node.
  [[nodiscard]] OptionalStringView text() const {
    return kind() == XMLNodeKind::Text ? _node.content : OptionalStringView();
  }

  [[nodiscard]] bool hasChildren() const { return _node.firstChild != nullptr; }
  [[nodiscard]] XMLNode firstChild() const { return nodeAt(_node.firstChild); }
  // The sibling after this node; null after the last.
  [[nodiscard]] XMLNode next() const { return nodeAt(_node.nextSibling); }
  [[nodiscard]] XMLRange<XMLNode> children() const { return XMLRange<XMLNode>(firstChild()); }
  // Counted by walking the children.
  [[nodiscard]] std::size_t childCount() const;

  [[nodiscard]] XMLRange<XMLAttribute> attributes() const {
    return XMLRange(hasAttributes() ? XMLAttribute(*_tree, _node.firstAttribute) : XMLAttribute());
  }
  // Counted by walking the attributes.
  [[nodiscard]] std::size_t attributeCount() const;
  [[nodiscard]] bool hasAttributes() const { return _node.firstAttribute != nullptr; }
  // The attribute of an element that has exactly one; null otherwise.
  [[nodiscard]] XMLAttribute onlyAttribute() const;
  // Null when the element has no attribute of that name (compared exactly).
  [[nodiscard]] XMLAttribute attributeForName(std::string_view attributeName) const;
  // The value of a named attribute: absent if there is no such attribute, empty if written empty.
  [[nodiscard]] OptionalStringView valueOfAttribute(std::string_view attributeName) const;
  // The values of several attributes in one pass, in the order of the names. If a lenient parser
  // accepts a duplicate attribute, the first one wins.
  template <typename... Names>
  [[nodiscard]] std::array<OptionalStringView, sizeof...(Names)> valuesOfAttributes(const Names&... names) const {
    const std::array<std::string_view, sizeof...(Names)> wanted = {names...};
    std::array<OptionalStringView, sizeof...(Names)> values;
    readAttributes(wanted.data(), values.data(), wanted.size());
    return values;
  }

  // Absent if the parser does not know.
  [[nodiscard]] std::optional<XMLPosition> position() const;
  // The parsed text, absent if the parser does not keep it, and the byte offset of the node's markup in it.
  [[nodiscard]] OptionalStringView source() const { return _handle ? _tree->source() : OptionalStringView(); }
  [[nodiscard]] std::size_t offset() const { return _handle ? _tree->offset(_handle) : 0; }

 private:
  [[nodiscard]] XMLNode nodeAt(XMLTree::NodeHandle handle) const {
    return handle ? XMLNode(*_tree, handle) : XMLNode();
  }
  void readAttributes(const std::string_view* names, OptionalStringView* values, std::size_t count) const;

  const XMLTree* _tree = nullptr;
  XMLTree::NodeHandle _handle = nullptr;
  XMLTree::Node _node;
};

}  // namespace korvex
