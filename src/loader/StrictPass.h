// The rules of XML that the fast parser does not check.
#pragma once

#include <optional>

#include "korvex/Document.h"
#include "korvex/SourceText.h"

namespace korvex {

// Parses the whole text with a strict parser and returns the first violation of well-formedness, if any. Also rejects
// what would let a DOCTYPE change the tree: declarations of entities and attributes, and references to entities that
// only an external DTD could declare. External DTDs and entities are never loaded.
[[nodiscard]] std::optional<DocumentError> findSyntaxError(const SourceText& source);

}  // namespace korvex
