#include "loader/PugiTree.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <type_traits>

#include "korvex/Keywords.h"
#include "korvex/OptionalString.h"
#include "loader/DocumentErrors.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr unsigned parseFlags = pugi::parse_escapes | pugi::parse_eol | pugi::parse_wconv_attribute |
                                pugi::parse_cdata | pugi::parse_comments | pugi::parse_pi | pugi::parse_doctype;

// pugixml's node and attribute classes each hold one pointer, which is the handle. Going through
// their constructors and internal_object() would add two calls into the library to every step.
template <typename Wrapper>
constexpr bool holdsOnePointer = sizeof(Wrapper) == sizeof(void*) && std::is_trivially_copyable_v<Wrapper>;
static_assert(holdsOnePointer<pugi::xml_node> && holdsOnePointer<pugi::xml_attribute>);

pugi::xml_node nodeOf(XMLTree::NodeHandle handle) { return std::bit_cast<pugi::xml_node>(handle); }
XMLTree::NodeHandle handleOf(pugi::xml_node node) { return std::bit_cast<XMLTree::NodeHandle>(node); }

pugi::xml_attribute attributeOf(XMLTree::AttributeHandle handle) { return std::bit_cast<pugi::xml_attribute>(handle); }
XMLTree::AttributeHandle handleOf(pugi::xml_attribute attribute) {
  return std::bit_cast<XMLTree::AttributeHandle>(attribute);
}

struct NodeType {
  XMLNodeKind kind;
  bool named;           // whether its position is that of its name, otherwise that of its value
  std::size_t opening;  // the length of the markup before that
};

// By pugi::xml_node_type. The kind of a DOCTYPE is that of the DOM. Null nodes, document nodes and declarations are
// never exposed.
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

bool isPCDATA(pugi::xml_node node) { return node.type() == pugi::node_pcdata; }
bool isCDATA(pugi::xml_node node) { return node.type() == pugi::node_cdata; }

bool isWhiteSpace(const char* text) {
  while (isXMLWhiteSpace(*text)) ++text;
  return *text == '\0';
}

// White space as a parser returns it: each line end is a line feed.
std::string withLineFeeds(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text.substr(at, 2) == "\r\n") continue;
    result += text[at] == '\r' ? '\n' : text[at];
  }
  return result;
}

}  // namespace

std::optional<DocumentError> PugiTree::parse(const LoadOptions& options) {
  _holdsCDATA = _buffer.find("![CDATA[") != std::string::npos;
  const unsigned flags = options.keepWhiteSpaceText ? parseFlags | pugi::parse_ws_pcdata : parseFlags;
  // The buffer includes the string's terminating zero, because the parser writes one there.
  const pugi::xml_parse_result result =
      _document.load_buffer_inplace(_buffer.data(), _buffer.size() + 1, flags, pugi::encoding_utf8);
  if (result) {
    if (options.strict) _wellFormedness.emplace(_source.text(), _buffer.data());
    return std::nullopt;
  }
  if (result.status == pugi::status_out_of_memory) return documentError(DocumentRule::OutOfMemory);
  return documentErrorAt(_source, static_cast<std::size_t>(result.offset), DocumentRule::NoTree,
                         {result.description()});
}

bool PugiTree::hasInternalSubset() const {
  for (const pugi::xml_node node : _document.children()) {
    if (node.type() == pugi::node_doctype) return std::strchr(node.value(), '[') != nullptr;
  }
  return false;
}

std::optional<DocumentError> PugiTree::arrange(const LoadOptions& options) {
  std::size_t depth = 0;
  pugi::xml_node parent = _document.root();
  pugi::xml_node node = parent.first_child();
  // One pass over all nodes in document order, without recursion: a document may be nested more deeply than the stack
  // allows.
  while (node || depth > 0) {
    if (!node) {
      _expansionBound.endRun();
      node = parent.next_sibling();
      parent = parent.parent();
      --depth;
    } else if (node.type() == pugi::node_element) {
      if (++depth > options.maximumDepth) return tooDeep(node, options);
      checkWellFormedness(node);
      boundExpansionOf(node, depth);
      parent = node;
      node = node.first_child();
    } else if (isText(node)) {
      node = arrangeText(node, options.keepWhiteSpaceText);
    } else {
      checkWellFormedness(node);
      node = node.next_sibling();
    }
  }
  if (_outOfMemory) return documentError(DocumentRule::OutOfMemory);
  if (_expansionBound.bytes() <= options.maximumExpandedBytes) return std::nullopt;
  return findOversizedExpansion({*this, root()}, _source, options);
}

void PugiTree::boundExpansionOf(pugi::xml_node element, std::size_t depth) {
  constexpr std::size_t deepestDefinition = 2;
  _expansionBound.endRun();
  if (depth > deepestDefinition) return;
  _expansionBound.addText(element.first_attribute().value());
  _expansionBound.endRun();
}

DocumentError PugiTree::tooDeep(pugi::xml_node element, const LoadOptions& options) const {
  return documentErrorAt(_source, offsetOf(element), DocumentRule::TooDeep, {std::to_string(options.maximumDepth)});
}

pugi::xml_node PugiTree::arrangeText(pugi::xml_node text, bool keepWhiteSpace) {
  const pugi::xml_node next = text.next_sibling();
  if (_holdsCDATA && (isCDATA(text) || isCDATA(next))) return arrangeRun(text, keepWhiteSpace);
  finishText(text, keepWhiteSpace);
  return next;
}

pugi::xml_node PugiTree::arrangeRun(pugi::xml_node first, bool keepWhiteSpace) {
  std::string joined;
  std::size_t begin = offsetOf(first);
  pugi::xml_node last;
  for (pugi::xml_node text = first; isText(text); text = text.next_sibling()) {
    if (isCDATA(text)) checkWellFormedness(text);
    if (isCDATA(text) && !isPCDATA(last)) {
      const std::string_view before = whiteSpaceBefore(offsetOf(text), keepWhiteSpace);
      joined += withLineFeeds(before);
      if (text == first) begin -= before.size();
    }
    joined += text.value();
    last = text;
  }
  const pugi::xml_node next = last.next_sibling();
  if (isCDATA(last))
    joined += withLineFeeds(whiteSpaceAfter(_source.text().find("]]>", offsetOf(last)) + 3, keepWhiteSpace));
  _joinedTexts.emplace(handleOf(first), begin);
  while (first.next_sibling() != next) first.parent().remove_child(first.next_sibling());
  _outOfMemory = !first.set_value(joined.c_str()) || _outOfMemory;
  finishText(first, keepWhiteSpace);
  return next;
}

void PugiTree::finishText(pugi::xml_node text, bool keepWhiteSpace) {
  const char* value = text.value();
  _expansionBound.addText(value);
  if (keepWhiteSpace ? *value == '\0' : isWhiteSpace(value)) text.parent().remove_child(text);
}

// If white-space-only text is kept, the parser has already created text nodes for it.
std::string_view PugiTree::whiteSpaceBefore(std::size_t offset, bool parsed) const {
  const std::string_view before = _source.text().substr(0, parsed ? 0 : offset);
  return before.substr(before.find_last_not_of(xmlWhiteSpace) + 1);
}

std::string_view PugiTree::whiteSpaceAfter(std::size_t offset, bool parsed) const {
  const std::string_view after = _source.text().substr(offset, parsed ? 0 : std::string_view::npos);
  const std::size_t end = std::min(after.find_first_not_of(xmlWhiteSpace), after.size());
  return after.substr(end).starts_with('<') ? after.substr(0, end) : std::string_view();
}

std::size_t PugiTree::offsetOf(const char* parsed) const { return static_cast<std::size_t>(parsed - _buffer.data()); }

std::size_t PugiTree::offsetOf(pugi::xml_node node) const {
  if (const auto joined = _joinedTexts.find(handleOf(node)); joined != _joinedTexts.end()) return joined->second;
  const NodeType& type = typeOf(node);
  return offsetOf(type.named ? node.name() : node.value()) - type.opening;
}

XMLNodeKind PugiTree::kind(NodeHandle node) const { return typeOf(nodeOf(node)).kind; }

OptionalStringView PugiTree::name(NodeHandle node) const {
  const char* name = nodeOf(node).name();
  if (*name == '\0') return std::nullopt;  // the kind of the node has no name
  return name;
}

OptionalStringView PugiTree::text(NodeHandle node) const {
  if (!isText(nodeOf(node))) return std::nullopt;
  return nodeOf(node).value();
}

XMLTree::NodeHandle PugiTree::firstChild(NodeHandle node) const { return handleOf(nodeOf(node).first_child()); }

XMLTree::NodeHandle PugiTree::nextSibling(NodeHandle node) const { return handleOf(nodeOf(node).next_sibling()); }

XMLTree::AttributeHandle PugiTree::firstAttribute(NodeHandle node) const {
  return handleOf(nodeOf(node).first_attribute());
}

XMLTree::AttributeHandle PugiTree::nextAttribute(AttributeHandle attribute) const {
  return handleOf(attributeOf(attribute).next_attribute());
}

OptionalStringView PugiTree::attributeName(AttributeHandle attribute) const { return attributeOf(attribute).name(); }

OptionalStringView PugiTree::attributeValue(AttributeHandle attribute) const { return attributeOf(attribute).value(); }

std::size_t PugiTree::offset(NodeHandle node) const { return offsetOf(nodeOf(node)); }

std::optional<XMLPosition> PugiTree::position(NodeHandle node) const {
  return _source.position(offsetOf(nodeOf(node)));
}

XMLTree::Node PugiTree::node(NodeHandle handle) const {
  const pugi::xml_node node = nodeOf(handle);
  const XMLTree::NodeHandle next = handleOf(node.next_sibling());
  const XMLNodeKind kind = typeOf(node).kind;
  if (kind == XMLNodeKind::Element) {
    return {kind, node.name(), handleOf(node.first_child()), next, handleOf(node.first_attribute())};
  }
  return {kind, text(handle), nullptr, next, nullptr};
}

std::size_t PugiTree::readAttributes(AttributeHandle& next, Attribute* result, std::size_t room) const {
  std::size_t count = 0;
  pugi::xml_attribute attribute = attributeOf(next);
  for (; attribute && count < room; attribute = attribute.next_attribute()) {
    result[count++] = {attribute.name(), attribute.value()};
  }
  next = handleOf(attribute);
  return count;
}

}  // namespace korvex
