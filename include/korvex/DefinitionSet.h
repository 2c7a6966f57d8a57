// The definitions of an app, from any number of documents, by name and ready to run.
//
//   DefinitionSetBuilder builder;
//   builder.add("addressbook.xml", loadDefinitions(*document));
//   DefinitionSetBuilder::Result result = std::move(builder).build();
//   if (!result.set) report(result.errors);
//
// Building a set finds the errors that depend on all documents, and reports all of them at once: duplicate names,
// undeclared references, maps and values, circular references, expressions that do not parse.
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

enum class DefinitionErrorKind : std::uint8_t {
  Rejected,          // the definition violates a rule of the language
  DuplicateName,     // or a duplicate version, or argument
  UnknownReference,  // "@name" is neither a block nor a constant
  UndeclaredValue,   // ":name", or a name in a condition or a collection, is no argument
  UnknownMap,
  Expression,  // a condition does not parse
  Other,
};

// Why a set cannot be built.
struct DefinitionError {
  std::string message;
  std::string document;  // the name under which the document was added
  XMLPosition position;  // of the faulty character
  DefinitionErrorKind kind = DefinitionErrorKind::Other;
};

// Immutable once built, so threads can share it. It owns the elements and does not need the documents.
class KORVEX_EXPORT DefinitionSet {
 public:
  DefinitionSet(const DefinitionSet&) = delete;
  DefinitionSet& operator=(const DefinitionSet&) = delete;
  ~DefinitionSet();

  // Null if there is none with that name.
  [[nodiscard]] const Plan* plan(std::string_view name) const;
  // The methods, in the order of their names, without the upgrades.
  [[nodiscard]] std::span<const Plan* const> plans() const;
  // From the lowest version, "initial", to the highest.
  [[nodiscard]] std::span<const Plan* const> upgrades() const;

  [[nodiscard]] const QXDAOMap* map(std::string_view name) const;
  // The pack whose column has that name.
  [[nodiscard]] const QXDAOPack* pack(std::string_view column) const;
  // Whether a <crypt> declares that property for the class or one of its base classes.
  [[nodiscard]] bool encrypts(const ModelClass& modelClass, std::string_view property) const;

  // The names of the documents, in the order in which they were added.
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
    std::shared_ptr<const DefinitionSet> set;  // null if there is an error
    std::vector<DefinitionError> errors;       // by document, then by place
  };

  DefinitionSetBuilder();
  DefinitionSetBuilder(DefinitionSetBuilder&&) noexcept;
  DefinitionSetBuilder& operator=(DefinitionSetBuilder&&) noexcept;
  ~DefinitionSetBuilder();

  // Adds the definitions of one document, including rejected ones. The document must live until the set is built,
  // because the positions of errors are read from it.
  void add(std::string document, std::vector<Definition> definitions);
  [[nodiscard]] Result build() &&;

 private:
  struct State;
  std::unique_ptr<State> _state;
};

}  // namespace korvex
