#include "Loader/PugiTree.h"

#include <array>
#include <cstring>

namespace korvex {

namespace {

constexpr unsigned parseFlags = pugi::parse_escapes | pugi::parse_eol | pugi::parse_wconv_attribute |
                                pugi::parse_cdata | pugi::parse_comments | pugi::parse_pi | pugi::parse_doctype |
                                pugi::parse_ws_pcdata;

pugi::xml_node nodeOf(XMLTree::NodeHandle handle) {
  return pugi::xml_node(static_cast<pugi::xml_node_struct*>(const_cast<void*>(handle)));
}

pugi::xml_attribute attributeOf(XMLTree::AttributeHandle handle) {
  return pugi::xml_attribute(static_cast<pugi::xml_attribute_struct*>(const_cast<void*>(handle)));
}

struct NodeType {
  XMLNodeKind kind;
  bool named;           // whether its place is told by its name, else by its value
  std::size_t opening;  // the length of the markup before that
};

// By pugi::xml_node_type. The kind of a DOCTYPE is that of the DOM; null and document nodes and
// declarations are never handed out.
constexpr std::array<NodeType, 9> nodeTypes{{
    {XMLNodeKind{}, false, 0},                                                  // null
    {XMLNodeKind{9}, false, 0},                                                 // document
    {XMLNodeKind::Element, true, std::string_view("<").size()},                 // element
    {XMLNodeKind::Text, false, 0},                                              // pcdata
    {XMLNodeKind::Text, false, std::string_view("<![CDATA[").size()},           // cdata
    {XMLNodeKind::Comment, false, std::string_view("<!--").size()},             // comment
    {XMLNodeKind::ProcessingInstruction, true, std::string_view("<?").size()},  // pi
    {XMLNodeKind::ProcessingInstruction, true, std::string_view("<?").size()},  // declaration
    {XMLNodeKind{10}, false, 0},                                                // doctype
}};

const NodeType& typeOf(pugi::xml_node node) { return nodeTypes[node.type()]; }

bool isText(pugi::xml_node node) { return typeOf(node).kind == XMLNodeKind::Text; }

bool isWhiteSpace(const char* text) { return text[std::strspn(text, " \t\r\n")] == '\0'; }

// The first element from a node on, itself included, among its siblings.
pugi::xml_node elementFrom(pugi::xml_node node) {
  while (node && node.type() != pugi::node_element) node = node.next_sibling();
  return node;
}

// Visits an element and those below it in document order, without recursion: documents may be
// nested more deeply than the stack.
class ElementWalk {
 public:
  explicit ElementWalk(pugi::xml_node root) : _root(root), _element(root) {}

  // Null after the last one.
  [[nodiscard]] pugi::xml_node element() const { return _element; }
  // How deeply the element is nested, the first one counting 1.
  [[nodiscard]] std::size_t depth() const { return _depth; }

  void advance() {
    if (const pugi::xml_node child = elementFrom(_element.first_child())) {
      _element = child;
      ++_depth;
    } else {
      advanceBeyond();
    }
  }

 private:
  // To the next element that is not below the current one.
  void advanceBeyond() {
    while (_element != _root) {
      const pugi::xml_node next = elementFrom(_element.next_sibling());
      _element = next ? next : _element.parent();
      if (next) return;
      --_depth;
    }
    _element = {};
  }

  pugi::xml_node _root;
  pugi::xml_node _element;
  std::size_t _depth = 1;
};

}  // namespace

std::optional<DocumentError> PugiTree::parse() {
  // The string's own zero at the end is part of the buffer: the parser wants to write one there.
  const pugi::xml_parse_result result =
      _document.load_buffer_inplace(_buffer.data(), _buffer.size() + 1, parseFlags, pugi::encoding_utf8);
  if (result) return std::nullopt;
  const XMLPosition position = _source.position(static_cast<std::size_t>(result.offset));
  return DocumentError{DocumentErrorKind::Malformed, std::string("no tree: ") + result.description(), position};
}

bool PugiTree::hasInternalSubset() const {
  for (const pugi::xml_node node : _document.children()) {
    if (node.type() == pugi::node_doctype) return std::strchr(node.value(), '[') != nullptr;
  }
  return false;
}

std::optional<DocumentError> PugiTree::arrange(const LoadOptions& options) {
  for (ElementWalk walk(_document.document_element()); walk.element(); walk.advance()) {
    if (walk.depth() > options.maximumDepth) {
      const std::string levels = std::to_string(options.maximumDepth);
      return DocumentError{DocumentErrorKind::TooDeep, "elements are nested deeper than " + levels + " levels",
                           *position(walk.element().internal_object())};
    }
    arrangeTexts(walk.element(), options.keepWhiteSpaceText);
  }
  return std::nullopt;
}

void PugiTree::arrangeTexts(pugi::xml_node element, bool keepWhiteSpace) {
  for (pugi::xml_node node = element.first_child(); node;) {
    const pugi::xml_node current = node;
    node = isText(node) ? joinTexts(node) : node.next_sibling();
    const bool unwanted = keepWhiteSpace ? *current.value() == '\0' : isWhiteSpace(current.value());
    if (isText(current) && unwanted) element.remove_child(current);
  }
}

// Moves the texts that directly follow a text up to its end, in the buffer, where the markup
// between them leaves room. Gives the node after them.
pugi::xml_node PugiTree::joinTexts(pugi::xml_node first) {
  char* end = nullptr;
  pugi::xml_node next = first.next_sibling();
  for (; isText(next); next = first.next_sibling()) {
    if (!end) end = _buffer.data() + offsetOf(first.value()) + std::strlen(first.value());
    const std::size_t length = std::strlen(next.value());
    std::memmove(end, next.value(), length + 1);
    end += length;
    first.parent().remove_child(next);
  }
  return next;
}

std::size_t PugiTree::offsetOf(const char* parsed) const { return static_cast<std::size_t>(parsed - _buffer.data()); }

XMLNodeKind PugiTree::kind(NodeHandle node) const { return typeOf(nodeOf(node)).kind; }

OptionalStringView PugiTree::name(NodeHandle node) const {
  if (!typeOf(nodeOf(node)).named) return std::nullopt;
  return nodeOf(node).name();
}

OptionalStringView PugiTree::text(NodeHandle node) const {
  if (!isText(nodeOf(node))) return std::nullopt;
  return nodeOf(node).value();
}

XMLTree::NodeHandle PugiTree::firstChild(NodeHandle node) const { return nodeOf(node).first_child().internal_object(); }

XMLTree::NodeHandle PugiTree::nextSibling(NodeHandle node) const {
  return nodeOf(node).next_sibling().internal_object();
}

XMLTree::AttributeHandle PugiTree::firstAttribute(NodeHandle node) const {
  return nodeOf(node).first_attribute().internal_object();
}

XMLTree::AttributeHandle PugiTree::nextAttribute(AttributeHandle attribute) const {
  return attributeOf(attribute).next_attribute().internal_object();
}

OptionalStringView PugiTree::attributeName(AttributeHandle attribute) const { return attributeOf(attribute).name(); }

OptionalStringView PugiTree::attributeValue(AttributeHandle attribute) const { return attributeOf(attribute).value(); }

std::optional<XMLPosition> PugiTree::position(NodeHandle node) const {
  const auto& [kind, named, opening] = typeOf(nodeOf(node));
  const char* known = named ? nodeOf(node).name() : nodeOf(node).value();
  return _source.position(offsetOf(known) - opening);
}

}  // namespace korvex
