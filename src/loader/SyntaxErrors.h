// What is wrong with a malformed document, in words that help to mend it.
#pragma once

#include <expat.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "korvex/SourceText.h"

namespace korvex {

// One line without a final period, and the byte offset in the text that it is about.
struct SyntaxError {
  std::string message;
  std::size_t offset = 0;
  bool outOfMemory = false;  // then nothing has been found out, and the rest is empty
};

// Explains why Expat refused the text, from its error code and the byte offset where it stopped.
// May read the text twice more.
[[nodiscard]] SyntaxError explainedError(const SourceText& source, XML_Error code, std::size_t offset);

// The offset of the first "&" in a piece of markup that begins neither a character reference nor
// one of the five predefined entities; npos when there is none.
[[nodiscard]] std::size_t unknownReference(std::string_view markup);

// The error of a reference to an unknown entity whose "&" stands at `offset`.
[[nodiscard]] SyntaxError undefinedEntity(std::string_view text, std::size_t offset);

}  // namespace korvex
