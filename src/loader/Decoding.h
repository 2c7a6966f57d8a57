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

// UTF-8, the default, is returned unchecked. UTF-16, ISO-8859-1 and US-ASCII are recognised by the first bytes or the
// XML declaration, and converted. Other encodings are rejected, and so are malformed documents that need conversion.
[[nodiscard]] DecodedText decodedText(std::string bytes);

}  // namespace korvex
