// The example that uses the whole language, for tests that change it.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "language/Vocabulary.h"
#include "markup/Markup.h"

namespace korvex {

inline std::string addressBook() {
  std::ifstream file(KORVEX_SOURCE_DIR "/examples/addressbook.xml");
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

inline bool isRefused(const std::string& text) {
  const Document::Result result = Document::fromBytes(text);
  if (!result.document) return true;
  for (const Definition& definition : loadDefinitions(*result.document)) {
    if (definition.error) return true;
  }
  return false;
}

// Calls back for each element of the language in the document.
template <typename Visit>
void forEachElement(const std::string& text, Visit visit) {
  const Markup markup(text);
  std::size_t count = 0;
  for (const MarkupElement& element : markup.elements()) {
    const ElementEntry* entry = vocabularyEntryOf(markup.nameOf(element));
    if (!entry) continue;
    ++count;
    visit(markup, element, *entry);
  }
  EXPECT_GT(count, 50U);
}

}  // namespace korvex
