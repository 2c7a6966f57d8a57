// From the bytes of a document to its text.
#pragma once

#include <optional>
#include <string>

#include "korvex/Document.h"

namespace korvex {

struct DecodedText {
  std::string text;  // UTF-8 without a byte order mark
  std::optional<DocumentError> error;
};

// Bytes that are UTF-8, as they are without a word to the contrary, are handed on unchecked. UTF-16,
// ISO-8859-1 and US-ASCII are recognised by their first bytes or by the XML declaration and
// converted; other encodings are refused, and so is what is malformed in a converted document.
[[nodiscard]] DecodedText decodedText(std::string bytes);

}  // namespace korvex
