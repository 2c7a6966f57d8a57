// The set of the definitions that can be run, also when others have errors.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "korvex/DefinitionSet.h"
#include "korvex/Document.h"

namespace korvex::verification {

struct NamedDocument {
  std::string name;
  std::shared_ptr<const Document> document;
};

struct RunnableSet {
  std::shared_ptr<const DefinitionSet> set;  // without the definitions that have errors, and those that need them
  std::vector<DefinitionError> errors;       // of the whole set
};

[[nodiscard]] RunnableSet runnableSetOf(std::span<const NamedDocument> documents);

}  // namespace korvex::verification
