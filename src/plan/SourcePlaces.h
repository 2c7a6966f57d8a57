// The source positions of elements, texts and their parts, while the documents live.
#pragma once

#include <cstddef>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/XMLNode.h"

namespace korvex {

// The positions of nodes, queried in document order: each line is counted once.
class PlaceCursor {
 public:
  explicit PlaceCursor(const XMLNode& node) : _source(node.source()) {}

  [[nodiscard]] XMLPosition of(const XMLNode& node);
  // For a text, its first character that is not white space.
  [[nodiscard]] XMLPosition ofText(const XMLNode& text);
  // For an element, its first text, or its start tag if it has none.
  [[nodiscard]] XMLPosition ofContent(const XMLNode& element);

 private:
  [[nodiscard]] XMLPosition at(std::size_t offset);

  OptionalStringView _source;
  std::size_t _offset = 0;
  XMLPosition _position;  // of that offset
};

// The offset in the source of the byte that is `decoded` bytes further in the parsed text. Stops at the end of the
// text.
[[nodiscard]] KORVEX_EXPORT std::size_t sourceOffset(std::string_view source, std::size_t at, std::size_t decoded);

// The positions of faults: exact if the parser keeps the source, otherwise those of the element.

// The character of an attribute's value.
[[nodiscard]] XMLPosition placeInAttribute(const XMLNode& element, std::string_view attribute, std::size_t offset);
// A word in a text, or in all texts of an element, after `earlier` other occurrences. If a list reference produced the
// word, the position of the text.
[[nodiscard]] XMLPosition placeInText(const XMLNode& node, std::string_view word, std::size_t earlier);

}  // namespace korvex
