// Where elements, texts and what is in them stand in their documents, while these are there.
#pragma once

#include <cstddef>
#include <string_view>

#include "korvex/XMLNode.h"

namespace korvex {

// The places of nodes that are asked for in document order: each line is counted once.
class PlaceCursor {
 public:
  explicit PlaceCursor(const XMLNode& node) : _source(node.source()) {}

  [[nodiscard]] XMLPosition of(const XMLNode& node);
  // Of a text, its first character that is no white space.
  [[nodiscard]] XMLPosition ofText(const XMLNode& text);
  // Of an element, its first text; where it has none, its start tag.
  [[nodiscard]] XMLPosition ofContent(const XMLNode& element);

 private:
  [[nodiscard]] XMLPosition at(std::size_t offset);

  OptionalStringView _source;
  std::size_t _offset = 0;
  XMLPosition _position;  // of that offset
};

// The places of what is at fault, exact where the parser keeps the source, else those of the element.

// The character of an attribute's value.
[[nodiscard]] XMLPosition placeInAttribute(const XMLNode& element, std::string_view attribute, std::size_t offset);
// A word in a text, or in all texts of an element, that stands `earlier` times in front of the one that is meant. Where
// list references made the word, the place of the text.
[[nodiscard]] XMLPosition placeInText(const XMLNode& node, std::string_view word, std::size_t earlier);

}  // namespace korvex
