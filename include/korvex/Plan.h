// Compiled methods: from a method and its arguments to SQL, the values to bind, and the key under which an engine
// caches the prepared statement.
//
//   DefinitionSet → Plan → PlanUnit ─┐
//                    Arguments ──────┴→ Assembly → key, values; SQL if the statement is not cached
//
// docs/execution.md defines the meaning of every attribute and every piece of SQL. This header covers everything up to
// the statement; the engine runs it.
//
// Plans and units belong to their DefinitionSet, have stable addresses and are immutable, so any number of threads may
// use them. An Assembly serves one call at a time; a reused one keeps its memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/Export.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/Value.h"
#include "korvex/XMLNode.h"

namespace korvex {

class DefinitionSet;
class Plan;
struct SetContents;

// A position in a document of a set. Valid while the set lives.
struct SourcePlace {
  std::string_view document;  // the name under which the document was added
  XMLPosition position;
};

enum class PlanErrorCode : std::uint8_t {
  UnknownArgument,    // the call names an argument that the method does not declare
  NullArgument,       // an argument declared with "$" is null or missing
  MissingTable,       // the method needs a table, and the call assigns none or an invalid name
  WrongType,          // a value has the wrong type for its use, such as a list that is bound, or a text as a collection
  UnknownProperty,    // a class has no such property, or the property cannot be read
  IntegerOutOfRange,  // an unsigned property exceeds SQL's integers
  NullEntry,          // a null among the entries of NOT IN, which would match no row
  WouldChangeAll,     // an update or delete without any remaining condition
  BadName,            // a key of a format that is not a valid name
};

// Why a call cannot be assembled. The message names the method and its faulty part, but never a value.
struct PlanError {
  PlanErrorCode code = PlanErrorCode::WrongType;
  std::string message;
  SourcePlace place;
};

// A part of a method with one SQL text: the whole method, a step, a try block, or an except block.
class KORVEX_EXPORT PlanUnit {
 public:
  // A number that is unique in the set and less than DefinitionSet::unitCount(). Every key begins with it.
  [[nodiscard]] std::uint32_t number() const { return _number; }
  [[nodiscard]] const Plan& plan() const;
  // The "resumable" attribute of a step; false on others.
  [[nodiscard]] bool resumable() const { return _resumable; }
  // Whether every call has the same SQL, because the unit has no dynamic parts.
  [[nodiscard]] bool fixedText() const { return _fixedText; }
  // The start tag of the method, step, try or except.
  [[nodiscard]] SourcePlace place() const;

 private:
  friend class PlanCompiler;
  friend class Assembly;
  friend class AssembledText;
  friend class PathUseWalk;
  friend class VariantSearch;
  friend class VariantText;

  const SetContents* _contents = nullptr;
  std::uint32_t _number = 0;
  std::uint32_t _plan = 0;   // its index in the set
  std::uint32_t _begin = 0;  // the first instruction, which is its place
  bool _resumable = false;
  bool _fixedText = false;
};

// How the units of a plan are run.
enum class PlanStructure : std::uint8_t {
  Single,  // one unit
  Steps,   // two or more units, one after the other
  Try,     // two units: the try block, and the except block that runs if it fails
};

// A method.
class KORVEX_EXPORT Plan {
 public:
  // Empty for an upgrade.
  [[nodiscard]] std::string_view name() const { return _method->name().value_or(std::string_view()); }
  [[nodiscard]] QXDAOOperation operation() const { return _method->operation(); }
  // The element: result type, arguments, foreach, parallel, version. module() is the document's name. The engine fills
  // and synchronises its slots (_counter, _ignoreCounter, _cls, _mappingInfo, _mappingSequence).
  [[nodiscard]] QXDAOMethod& method() const { return *_method; }

  [[nodiscard]] PlanStructure structure() const { return _structure; }
  [[nodiscard]] std::span<const PlanUnit> units() const;
  // The method's start tag.
  [[nodiscard]] SourcePlace place() const;

 private:
  friend class PlanCompiler;
  friend class Assembly;

  const SetContents* _contents = nullptr;
  QXDAOMethod* _method = nullptr;
  std::uint32_t _firstUnit = 0;
  std::uint32_t _unitCount = 0;
  std::uint32_t _place = 0;  // an instruction
  PlanStructure _structure = PlanStructure::Single;
};

// One value to bind, for one "?" of the SQL.
struct BoundValue {
  ValueView value;        // never a list, a dictionary or an object
  std::string_view name;  // as written, without ":", such as "person.notes"; the key for a pair of a format
  // Whether the value is stored encrypted: its property is declared by <crypt>, or it belongs to a pack with
  // crypt="true". The engine binds the output of its cipher; null stays null.
  bool encrypted = false;
};

// One call of a method.
//
//   Assembly assembly;
//   if (auto error = assembly.begin(*plan, arguments)) return fail(*error);
//   for (const PlanUnit& unit : plan->units()) {
//     if (auto error = assembly.assemble(unit)) return fail(*error);
//     if (assembly.quits()) break;
//     Statement* statement = cache.find(assembly.key());
//     if (!statement) statement = cache.add(assembly.key(), prepare(assembly.sql()));
//     bind(statement, assembly.values());
//   }
//
// The arguments and their objects are not copied. They must live and stay unchanged until the call is over.
class KORVEX_EXPORT Assembly {
 public:
  Assembly();
  Assembly(Assembly&&) noexcept;
  Assembly& operator=(Assembly&&) noexcept;
  ~Assembly();

  // Begins a call, and checks that every argument is declared, that no required one is null, and that a method with
  // assignedTable has a table. `table` must live as long as the arguments.
  [[nodiscard]] std::optional<PlanError> begin(const Plan& plan, const Arguments& arguments,
                                               std::string_view table = {});
  std::optional<PlanError> begin(const Plan& plan, Arguments&& arguments, std::string_view table = {}) = delete;

  // The entries of a method with "foreach", in order: their number, and the entry that the next assemble uses as the
  // item. Without "foreach", there is one entry and nothing to choose. An absent or null collection has no entries.
  [[nodiscard]] std::size_t entryCount() const;
  void chooseEntry(std::size_t index);

  // Evaluates the conditions, loops and values of one unit. An error discards what was assembled before.
  [[nodiscard]] std::optional<PlanError> assemble(const PlanUnit& unit);

  // The result, valid until the next begin or assemble.

  // Whether an element with onVoid="quit" is empty, so that the unit must not be run.
  [[nodiscard]] bool quits() const;
  // Whether the SQL has only white space and comments, so that there is nothing to run.
  [[nodiscard]] bool empty() const;
  // The unit and its decisions as bytes. In one set, equal keys mean equal SQL with the same number and order of
  // values.
  [[nodiscard]] std::string_view key() const;
  // One for each "?" of the SQL, in order.
  [[nodiscard]] std::span<const BoundValue> values() const;

  // The SQL of the decisions. Only if quits() is false. Every call writes it again.
  [[nodiscard]] std::string sql() const;
  // The source position of the SQL at an offset: that of the text or element it comes from, and exact to the character
  // if no list reference or entity precedes it in the text. An offset at or past the end yields the last piece; empty
  // SQL yields the unit.
  [[nodiscard]] SourcePlace placeOf(std::size_t offset) const;

 private:
  friend class DecisionMaker;
  struct State;

  [[nodiscard]] std::optional<PlanError> beginForeach();

  std::unique_ptr<State> _state;
};

// Assembles one unit in a single call, for tests and tools. The SQL is empty if the unit quits.
struct Assembled {
  std::optional<PlanError> error;
  bool quits = false;
  std::string sql;
  std::vector<Value> values;    // copies
  std::vector<bool> encrypted;  // whether each value is stored encrypted
  std::string key;
};
[[nodiscard]] KORVEX_EXPORT Assembled assemble(const PlanUnit& unit, const Arguments& arguments,
                                               std::string_view table = {}, std::size_t entry = 0);

// A digest of 16 bytes that identifies an interrupted call by its arguments: equal for equal arguments, and almost
// certainly different for others. Objects are compared by class name and readable properties.
[[nodiscard]] KORVEX_EXPORT std::string digestOf(const Arguments& arguments);

}  // namespace korvex
