// The definitions of a document, each built when it is first asked for.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/Export.h"
#include "korvex/OptionalString.h"
#include "korvex/XMLNode.h"

namespace korvex {

// For apps that use few of their definitions at a time, and whose documents were checked when the
// app was built: a mistake in a definition is found only when that definition is asked for.
// All operations may run on any thread. Places count from 0, in document order; each has to be less
// than size(). Views and references are valid while the index lives.
class KORVEX_EXPORT DefinitionIndex {
 public:
  // Finds the definitions that loadDefinitions would build, but builds none. The document is not null.
  explicit DefinitionIndex(std::unique_ptr<const Document> document);
  DefinitionIndex(const DefinitionIndex&) = delete;
  DefinitionIndex& operator=(const DefinitionIndex&) = delete;
  ~DefinitionIndex();

  [[nodiscard]] const Document& document() const { return *_document; }
  [[nodiscard]] std::size_t size() const { return _size; }

  // What the document says, whether the definition is valid or not. The name is the one that the
  // element would have; absent for upgrades, crypts and packs, which have none.
  [[nodiscard]] std::string_view tag(std::size_t place) const;
  [[nodiscard]] OptionalStringView name(std::size_t place) const;
  // Where the start tag begins.
  [[nodiscard]] XMLPosition position(std::size_t place) const;

  // The definition, with its element or its error as loadDefinitions gives them. The first call for
  // a place builds it, once; threads that ask for the same place meanwhile wait.
  [[nodiscard]] const Definition& operator[](std::size_t place) const;

 private:
  struct Entry;

  std::unique_ptr<const Document> _document;
  std::unique_ptr<Entry[]> _entries;
  std::size_t _size = 0;
};

}  // namespace korvex
