// What the tool finds wrong, and how it prints that.
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include "Loader/DefinitionLoader.h"
#include "Tool/ElementJson.h"

namespace korvex {

struct Finding {
  // The definition at fault; a document that cannot be read as a whole has none.
  struct InDefinition {
    std::string tag;
    OptionalString name;  // its "id"
    std::size_t line = 0;
  };

  std::string path;
  XMLPosition position;
  std::string message;
  std::optional<InDefinition> definition;
};

// The finding of a definition that was refused, at the node at fault.
[[nodiscard]] Finding findingOf(const std::string& path, const Definition& definition);
[[nodiscard]] Finding findingOf(const std::string& path, const DocumentError& error);

// "path:line:column: error: message" on one line, whatever the message holds; then the source line
// and a caret, when there is a source.
void printFinding(std::ostream& out, const Finding& finding, const SourceText* source, bool color);

// The finding as data, the message exactly as it is.
[[nodiscard]] Json findingJson(const Finding& finding);

}  // namespace korvex
