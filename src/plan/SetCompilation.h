// What the compilers of a set share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/DefinitionSet.h"
#include "plan/ReusableTexts.h"
#include "plan/SetContents.h"

namespace korvex {

// The definitions of one document.
struct SourceDocument {
  std::string name;
  std::vector<Definition> definitions;
};

struct SetCompilation {
  SetContents& contents;
  std::vector<DefinitionError>& errors;
  std::deque<ReusableText> texts;
  NameTable<ReusableText> textsByName;
  std::size_t putIn = 0;       // pieces that references have put in
  std::size_t bytesPutIn = 0;  // and their texts

  void fail(std::uint32_t document, const XMLPosition& position, std::string message) {
    constexpr std::size_t maxErrors = 10000;
    if (errors.size() < maxErrors) errors.push_back({std::move(message), contents.documents[document], position});
  }
  // So many that searching their texts for the exact places would take longer than anybody wants to wait.
  [[nodiscard]] bool hasManyErrors() const { return errors.size() >= 200; }
};

// Takes the elements out of the definitions. The contents are whole when no error was added.
void compileSet(std::vector<SourceDocument>& documents, SetContents& contents, std::vector<DefinitionError>& errors);

}  // namespace korvex
