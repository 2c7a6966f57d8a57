// Sets of definitions from texts.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "korvex/Definition.h"
#include "korvex/DefinitionSet.h"
#include "korvex/Document.h"

namespace korvex {

// Documents named "1.xml", "2.xml" and so on.
inline DefinitionSetBuilder::Result buildSet(const std::vector<std::string>& texts) {
  std::vector<std::unique_ptr<Document>> documents;
  DefinitionSetBuilder builder;
  for (const std::string& text : texts) {
    Document::Result parsed = Document::fromBytes(text);
    const std::string name = std::to_string(documents.size() + 1) + ".xml";
    if (!parsed.document) return {nullptr, {{parsed.error->message, name, parsed.error->position}}};
    builder.add(name, loadDefinitions(*parsed.document));
    documents.push_back(std::move(parsed.document));
  }
  return std::move(builder).build();
}

}  // namespace korvex
