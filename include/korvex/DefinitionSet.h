// The definitions of an app, from any number of documents, by name and ready to run.
//
//   DefinitionSetBuilder builder;
//   builder.add("addressbook.xml", loadDefinitions(*document));
//   DefinitionSetBuilder::Result result = std::move(builder).build();
//   if (!result.set) report(result.errors);
//
// What only all documents together can tell is found here, and all of it is reported at once: names that are declared
// twice, references, maps and values that nobody declares, references in a circle, expressions that do not parse.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/Definition.h"
#include "korvex/Export.h"
#include "korvex/Plan.h"
#include "korvex/QXDAOCryptProperty.h"
#include "korvex/QXDAOMap.h"
#include "korvex/QXDAOPack.h"

namespace korvex {

// Why a set cannot be built.
struct DefinitionError {
  std::string message;
  std::string document;  // the name that the document was added by
  XMLPosition position;  // of what is at fault
};

// Never changed once it is built; threads share it. It holds the elements, and nothing of the documents.
class KORVEX_EXPORT DefinitionSet {
 public:
  DefinitionSet(const DefinitionSet&) = delete;
  DefinitionSet& operator=(const DefinitionSet&) = delete;
  ~DefinitionSet();

  // Null when there is none of that name.
  [[nodiscard]] const Plan* plan(std::string_view name) const;
  // The methods without the upgrades, in the order of their names.
  [[nodiscard]] std::span<const Plan* const> plans() const;
  // From the lowest version, "initial", to the highest.
  [[nodiscard]] std::span<const Plan* const> upgrades() const;

  [[nodiscard]] const QXDAOMap* map(std::string_view name) const;
  // The pack that stores its properties in a column of that name.
  [[nodiscard]] const QXDAOPack* pack(std::string_view column) const;
  // Whether a property of a class, or of one that it derives from, is declared by <crypt>.
  [[nodiscard]] bool encrypts(const ModelClass& modelClass, std::string_view property) const;

  // The documents by the names that they were added by, in their order.
  [[nodiscard]] std::span<const std::string> documents() const;
  [[nodiscard]] std::uint32_t unitCount() const;

 private:
  friend class DefinitionSetBuilder;
  explicit DefinitionSet(std::unique_ptr<SetContents> contents);

  std::unique_ptr<SetContents> _contents;
};

class KORVEX_EXPORT DefinitionSetBuilder {
 public:
  struct Result {
    std::shared_ptr<const DefinitionSet> set;  // null when there is an error
    std::vector<DefinitionError> errors;       // by document, then by place
  };

  DefinitionSetBuilder();
  DefinitionSetBuilder(DefinitionSetBuilder&&) noexcept;
  DefinitionSetBuilder& operator=(DefinitionSetBuilder&&) noexcept;
  ~DefinitionSetBuilder();

  // Takes the definitions of one document, built and refused ones. The document stays alive until the set is built: the
  // places of what is at fault are read from it.
  void add(std::string document, std::vector<Definition> definitions);
  [[nodiscard]] Result build() &&;

 private:
  struct State;
  std::unique_ptr<State> _state;
};

}  // namespace korvex
