// What is to be said about definition documents.
#pragma once

#include <string>
#include <vector>

#include "Checks/Finding.h"
#include "Loader/DefinitionLoader.h"

namespace korvex {

// The finding of a document that cannot be read; `source` is null when there is no text either.
[[nodiscard]] Finding findingOf(const std::string& path, const DocumentError& error, const SourceText* source);

// The findings of a document and its definitions, in the order of the definitions.
[[nodiscard]] std::vector<Finding> findingsOf(const std::string& path, const Document& document,
                                              const std::vector<Definition>& definitions);

}  // namespace korvex
