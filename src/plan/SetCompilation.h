// The data that the compilers of a set share.
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
  std::size_t putIn = 0;       // pieces that references have inserted
  std::size_t bytesPutIn = 0;  // and their texts

  void fail(std::uint32_t document, const XMLPosition& position, std::string message,
            DefinitionErrorKind kind = DefinitionErrorKind::Other) {
    constexpr std::size_t maxErrors = 10000;
    if (errors.size() < maxErrors) errors.push_back({std::move(message), contents.documents[document], position, kind});
  }
  // With more errors, searching for the exact positions would take too long.
  [[nodiscard]] bool hasManyErrors() const { return errors.size() >= 200; }
};

// Takes the elements out of the definitions. The contents are complete if no error was added.
void compileSet(std::vector<SourceDocument>& documents, SetContents& contents, std::vector<DefinitionError>& errors);

}  // namespace korvex
