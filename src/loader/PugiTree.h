// The document tree of pugixml, rearranged for the elements.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>

#include "korvex/Document.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/SourceText.h"
#include "korvex/XMLNode.h"
#include "loader/ExpansionLimit.h"
#include "loader/WellFormedness.h"

namespace korvex {

// Handles are pugixml's own. It cannot be moved, because its nodes point into it. The text must outlive it.
class PugiTree final : public XMLTree {
 public:
  explicit PugiTree(const SourceText& source) : _source(source), _buffer(source.text()) {}
  PugiTree(const PugiTree&) = delete;
  PugiTree& operator=(const PugiTree&) = delete;

  // Parses the text. Accepts many documents that are not well-formed.
  [[nodiscard]] std::optional<DocumentError> parse(const LoadOptions& options);
  // Whether the parsed and arranged text is certainly well-formed; false means that it is unknown. Call it once, and
  // only with strict options.
  [[nodiscard]] bool isSurelyWellFormed() { return _wellFormedness && _wellFormedness->isCertain(_document); }
  // Whether the DOCTYPE has an internal subset.
  [[nodiscard]] bool hasInternalSubset() const;
  // Merges each run of text and CDATA into one text node, removes white-space-only text, and rejects elements that are
  // nested too deeply and texts whose expansion is too large.
  [[nodiscard]] std::optional<DocumentError> arrange(const LoadOptions& options);

  // The root element, once parsed.
  [[nodiscard]] NodeHandle root() const { return _document.document_element().internal_object(); }

  [[nodiscard]] XMLNodeKind kind(NodeHandle node) const override;
  [[nodiscard]] OptionalStringView name(NodeHandle node) const override;
  [[nodiscard]] OptionalStringView text(NodeHandle node) const override;
  [[nodiscard]] NodeHandle firstChild(NodeHandle node) const override;
  [[nodiscard]] NodeHandle nextSibling(NodeHandle node) const override;
  [[nodiscard]] AttributeHandle firstAttribute(NodeHandle node) const override;
  [[nodiscard]] AttributeHandle nextAttribute(AttributeHandle attribute) const override;
  [[nodiscard]] OptionalStringView attributeName(AttributeHandle attribute) const override;
  [[nodiscard]] OptionalStringView attributeValue(AttributeHandle attribute) const override;
  [[nodiscard]] std::optional<XMLPosition> position(NodeHandle node) const override;
  [[nodiscard]] OptionalStringView source() const override { return _source.text(); }
  [[nodiscard]] std::size_t offset(NodeHandle node) const override;
  [[nodiscard]] Node node(NodeHandle node) const override;
  [[nodiscard]] std::size_t readAttributes(AttributeHandle& next, Attribute* result, std::size_t room) const override;

 private:
  // Adds the element's own part of the bound: the text of a constant, which is an attribute.
  void boundExpansionOf(pugi::xml_node element, std::size_t depth);
  void checkWellFormedness(pugi::xml_node node) {
    if (_wellFormedness) _wellFormedness->add(node);
  }
  // Both return the next node in the same element.
  [[nodiscard]] pugi::xml_node arrangeText(pugi::xml_node text, bool keepWhiteSpace);
  // Joins a run of texts and CDATA, including white space around the CDATA. The parser drops such white space unless it
  // keeps all white space, which is much slower.
  [[nodiscard]] pugi::xml_node arrangeRun(pugi::xml_node first, bool keepWhiteSpace);
  void finishText(pugi::xml_node text, bool keepWhiteSpace);
  // The white space that ends or begins at an offset of the source; empty if it was parsed as text.
  [[nodiscard]] std::string_view whiteSpaceBefore(std::size_t offset, bool parsed) const;
  [[nodiscard]] std::string_view whiteSpaceAfter(std::size_t offset, bool parsed) const;
  [[nodiscard]] DocumentError tooDeep(pugi::xml_node element, const LoadOptions& options) const;
  // The offset in the text of a parsed name or value, and of the markup of a node.
  [[nodiscard]] std::size_t offsetOf(const char* parsed) const;
  [[nodiscard]] std::size_t offsetOf(pugi::xml_node node) const;

  const SourceText& _source;
  std::string _buffer;  // parsed in place: names and values of the tree point into it
  pugi::xml_document _document;
  std::optional<WellFormedness> _wellFormedness;  // checked while the tree is arranged
  bool _holdsCDATA = false;                       // without CDATA, no two texts are adjacent
  // The offsets of joined texts, whose values are no longer in the buffer.
  std::unordered_map<NodeHandle, std::size_t> _joinedTexts;
  bool _outOfMemory = false;  // a joined text could not be stored
  ExpansionBound _expansionBound;
};

}  // namespace korvex
