// The definitions of a document, each built on first use.
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

// For apps that use few of their definitions at a time and whose documents were checked when the app
// was built: an error in a definition is reported only when that definition is requested.
// All operations may run on any thread. Indexes count from 0, in document order, and must be less
// than size(). Views and references are valid while the index lives.
class KORVEX_EXPORT DefinitionIndex {
 public:
  // Finds the definitions that loadDefinitions would build, without building them. The document must not be null.
  explicit DefinitionIndex(std::unique_ptr<const Document> document);
  DefinitionIndex(const DefinitionIndex&) = delete;
  DefinitionIndex& operator=(const DefinitionIndex&) = delete;
  ~DefinitionIndex();

  [[nodiscard]] const Document& document() const { return *_document; }
  [[nodiscard]] std::size_t size() const { return _size; }

  // Read from the document, whether or not the definition is valid. The name is that of the element; it is absent for
  // upgrades, crypts and packs.
  [[nodiscard]] std::string_view tag(std::size_t place) const;
  [[nodiscard]] OptionalStringView name(std::size_t place) const;
  // The position of the start tag.
  [[nodiscard]] XMLPosition position(std::size_t place) const;

  // The definition, with the element or error that loadDefinitions would produce. The first call for an index builds
  // it; concurrent calls for the same index wait.
  [[nodiscard]] const Definition& operator[](std::size_t place) const;

 private:
  struct Entry;

  std::unique_ptr<const Document> _document;
  std::unique_ptr<Entry[]> _entries;
  std::size_t _size = 0;
};

}  // namespace korvex
