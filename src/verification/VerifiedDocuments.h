// The documents of a set, with the places of their definitions.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "checks/Finding.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"

namespace korvex::verification {

using SharedDefinition = std::shared_ptr<const Finding::InDefinition>;

struct VerifiedDocument {
  std::shared_ptr<const CheckedFile> file;  // with a source
  std::shared_ptr<const Document> document;
  std::vector<SharedDefinition> definitions;  // in the order of their places
  std::vector<Definition> built;              // in the same order

  // The definition that holds a place; null before the first one.
  [[nodiscard]] const SharedDefinition* definitionAt(std::size_t offset) const;
  // Up to the next definition.
  [[nodiscard]] std::string_view sourceOf(const Finding::InDefinition& definition) const;
};
// By the name under which the set knows it.
using VerifiedDocuments = std::map<std::string, VerifiedDocument, std::less<>>;

// A finding in a document, in the definition that holds the span.
[[nodiscard]] Finding findingAt(const VerifiedDocument& document, SchemaRule rule, const Span& span,
                                std::string message, std::string help = {});

// A place in a document as the set tells it; the start of the document if it has no such place.
[[nodiscard]] std::size_t offsetOf(const SourceText& source, const XMLPosition& position);

}  // namespace korvex::verification
