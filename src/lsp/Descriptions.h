// Descriptions of the vocabulary, as Markdown.
#pragma once

#include <string>

#include "language/Vocabulary.h"

namespace korvex::lsp {

// What the element is for, its attributes and its content.
[[nodiscard]] std::string descriptionOf(const ElementEntry& element);
// What the attribute is for and which values it accepts.
[[nodiscard]] std::string descriptionOf(const AttributeEntry& attribute, const ElementEntry& element);

}  // namespace korvex::lsp
