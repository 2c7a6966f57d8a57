// Expat's parser as an owned value.
#pragma once

#include <expat.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <type_traits>

namespace korvex {

struct ExpatParserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

// Null if it could not be allocated. Expat's functions accept null; parsing then fails at once.
using ExpatParser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ExpatParserDeleter>;

// Whether parsing failed for lack of memory.
[[nodiscard]] inline bool isOutOfMemory(const ExpatParser& parser) {
  return !parser || XML_GetErrorCode(parser.get()) == XML_ERROR_NO_MEMORY;
}

// Parses a whole document. False if parsing failed or was stopped; the parser's error code and byte index then give
// the details.
[[nodiscard]] inline bool parseWhole(const ExpatParser& parser, std::string_view document) {
  // One piece is fastest, but the parser's interface counts in int, and its buffer doubles.
  constexpr std::size_t pieceLength = std::size_t{1} << 28U;
  bool last = false;
  while (!last) {
    const std::string_view piece = document.substr(0, pieceLength);
    document.remove_prefix(piece.size());
    last = document.empty();
    if (XML_Parse(parser.get(), piece.data(), static_cast<int>(piece.size()), last ? 1 : 0) != XML_STATUS_OK)
      return false;
  }
  return true;
}

// The parser's byte offset in the document.
[[nodiscard]] inline std::size_t currentOffset(const ExpatParser& parser) {
  const XML_Index index = XML_GetCurrentByteIndex(parser.get());
  return index < 0 ? 0 : static_cast<std::size_t>(index);
}

}  // namespace korvex
