// The rules of XML that a fast parser does not check.
#pragma once

#include <optional>

#include "korvex/Document.h"
#include "korvex/SourceText.h"

namespace korvex {

// Reads the whole text by a strict parser and tells the first thing that is not well-formed, or
// nothing. Also refused is what would let a DOCTYPE change the tree: declarations of entities and
// of attributes, and references to entities that only an external DTD could declare. No external
// DTD or entity is ever loaded.
[[nodiscard]] std::optional<DocumentError> findSyntaxError(const SourceText& source);

}  // namespace korvex
