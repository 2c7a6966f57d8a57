// Explains what is wrong with a malformed document, and how to fix it.
#pragma once

#include <expat.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

#include "korvex/DocumentError.h"
#include "korvex/SourceText.h"
#include "loader/DocumentErrors.h"

namespace korvex {

// A syntax error and its byte offset in the text.
struct SyntaxError {
  SyntaxError(DocumentRule violated, std::size_t place = 0, std::initializer_list<std::string_view> details = {})
      : rule(violated), message(documentMessage(violated, details)), offset(place) {}

  DocumentRule rule;  // OutOfMemory if the explanation ran out of memory
  std::string message;
  std::size_t offset;
};

// Explains why Expat rejected the text, from its error code and the byte offset where it stopped. May parse the text
// twice more.
[[nodiscard]] SyntaxError explainedError(const SourceText& source, XML_Error code, std::size_t offset);

// The offset of the first "&" in a piece of markup that begins neither a character reference nor one of the five
// predefined entities; npos if there is none.
[[nodiscard]] std::size_t unknownReference(std::string_view markup);

// The error of a reference to an unknown entity whose "&" is at `offset`.
[[nodiscard]] SyntaxError undefinedEntity(std::string_view text, std::size_t offset);

}  // namespace korvex
