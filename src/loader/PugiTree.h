// The document tree as pugixml keeps it, put into the shape that the elements read.
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

// Handles are pugixml's own. Stays where it is built, since its nodes point into it; the text must
// outlive it.
class PugiTree final : public XMLTree {
 public:
  explicit PugiTree(const SourceText& source) : _source(source), _buffer(source.text()) {}
  PugiTree(const PugiTree&) = delete;
  PugiTree& operator=(const PugiTree&) = delete;

  // Parses the text. Much that is not well-formed is accepted.
  [[nodiscard]] std::optional<DocumentError> parse(const LoadOptions& options);
  // Whether the text that was parsed and arranged is certainly well-formed. False leaves it open. Once, and only when
  // the options were strict.
  [[nodiscard]] bool isSurelyWellFormed() { return _wellFormedness && _wellFormedness->isCertain(_document); }
  // Whether the DOCTYPE has declarations of its own.
  [[nodiscard]] bool hasInternalSubset() const;
  // Makes each run of text and CDATA between other markup one text node, takes away those of white
  // space only, and refuses elements that are nested too deeply and texts that expand to too much.
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
  // The element's own share in the bound: that of a constant's text, which is an attribute.
  void boundExpansionOf(pugi::xml_node element, std::size_t depth);
  void checkWellFormedness(pugi::xml_node node) {
    if (_wellFormedness) _wellFormedness->add(node);
  }
  // Both give the node that comes after in the same element.
  [[nodiscard]] pugi::xml_node arrangeText(pugi::xml_node text, bool keepWhiteSpace);
  // Joins a run of texts with CDATA in it, and the white space around the CDATA. That alone is no
  // text to the parser unless it is asked for all of it, which costs much more.
  [[nodiscard]] pugi::xml_node arrangeRun(pugi::xml_node first, bool keepWhiteSpace);
  void finishText(pugi::xml_node text, bool keepWhiteSpace);
  // The white space that ends or begins at an offset of the source; none when it was parsed as text.
  [[nodiscard]] std::string_view whiteSpaceBefore(std::size_t offset, bool parsed) const;
  [[nodiscard]] std::string_view whiteSpaceAfter(std::size_t offset, bool parsed) const;
  [[nodiscard]] DocumentError tooDeep(pugi::xml_node element, const LoadOptions& options) const;
  // Where in the text a name or a value was parsed, and where the markup of a node begins.
  [[nodiscard]] std::size_t offsetOf(const char* parsed) const;
  [[nodiscard]] std::size_t offsetOf(pugi::xml_node node) const;

  const SourceText& _source;
  std::string _buffer;  // parsed in place: names and values of the tree are pieces of it
  pugi::xml_document _document;
  std::optional<WellFormedness> _wellFormedness;  // looked at while the tree is arranged
  bool _holdsCDATA = false;                       // without any, no two texts are neighbours
  // Where texts begin that were joined, whose values are not in the buffer any more.
  std::unordered_map<NodeHandle, std::size_t> _joinedTexts;
  bool _outOfMemory = false;  // a joined text could not be kept
  ExpansionBound _expansionBound;
};

}  // namespace korvex
