// Methods that are ready to run: from a method and its arguments to SQL, the values to bind, and the key by which a
// prepared statement is found again.
//
//   DefinitionSet → Plan → PlanUnit ─┐
//                    Arguments ──────┴→ Assembly → key, values; text when the statement is not there yet
//
// docs/execution.md says what every attribute and every piece of SQL means; this is its first half, everything up to
// the statement. Running it is the engine's.
//
// Plans and units belong to their DefinitionSet, stay where they are, are never changed, and are used on any number of
// threads at once. An Assembly belongs to one call at a time; used again, it allocates nothing that it has already.
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

// A place in one of the documents of a set. Both are valid while the set lives.
struct SourcePlace {
  std::string_view document;  // the name under which the document was added
  XMLPosition position;
};

enum class PlanErrorCode : std::uint8_t {
  UnknownArgument,    // the call names an argument that the method does not declare
  NullArgument,       // an argument declared with "$" is null or not given
  MissingTable,       // the method wants a table and the call assigns none, or a name that cannot be one
  WrongType,          // a value is not of a type that its use takes: a list that is bound, a text that is gone through
  UnknownProperty,    // a class has no such property, or one that cannot be read
  IntegerOutOfRange,  // an unsigned property beyond SQL's integers
  NullEntry,          // a null among the entries of NOT IN, which would find no row
  WouldChangeAll,     // an update or delete whose conditions are all absent
  BadName,            // a key of a format that cannot be a name
};

// Why a call cannot be assembled. The message names the method and what of it is at fault, never a value.
struct PlanError {
  PlanErrorCode code = PlanErrorCode::WrongType;
  std::string message;
  SourcePlace place;
};

// A part of a method that is assembled to one SQL text: the method's whole content, a step, what is tried, or what is
// run when that fails.
class KORVEX_EXPORT PlanUnit {
 public:
  // A number that no other unit of the set has, below DefinitionSet::unitCount(); it begins every key.
  [[nodiscard]] std::uint32_t number() const { return _number; }
  [[nodiscard]] const Plan& plan() const;
  // The "resumable" attribute of a step; false on others.
  [[nodiscard]] bool resumable() const { return _resumable; }
  // Every call gives the same text: nothing in it is decided.
  [[nodiscard]] bool fixedText() const { return _fixedText; }
  // Where it begins: the start tag of the method, step, try or except.
  [[nodiscard]] SourcePlace place() const;

 private:
  friend class PlanCompiler;
  friend class Assembly;
  friend class AssembledText;

  const SetContents* _contents = nullptr;
  std::uint32_t _number = 0;
  std::uint32_t _plan = 0;   // its index in the set
  std::uint32_t _begin = 0;  // the first instruction, which is its place
  bool _resumable = false;
  bool _fixedText = false;
};

// How the units of a plan belong together.
enum class PlanStructure : std::uint8_t {
  Single,  // one unit
  Steps,   // two or more units, one after the other
  Try,     // two units: what is tried, and what is run when it fails
};

// A method.
class KORVEX_EXPORT Plan {
 public:
  // Empty for an upgrade.
  [[nodiscard]] std::string_view name() const { return _method->name().value_or(std::string_view()); }
  [[nodiscard]] QXDAOOperation operation() const { return _method->operation(); }
  // The element: result type, arguments, foreach, parallel, version. Its engine slots (_counter, _ignoreCounter, _cls,
  // _mappingInfo, _mappingSequence) are the engine's to fill and to guard; module() is the document's name.
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

// One value to bind, in the place of one "?" of the SQL.
struct BoundValue {
  ValueView value;        // never a list, a dictionary or an object
  std::string_view name;  // as written, without ":", such as "person.notes"; the key for a pair of a format
  // Stored encrypted: the property is declared by <crypt>, or the value is that of a pack with crypt="true". The engine
  // binds what its cipher makes of the value; null stays null.
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
// The arguments, and the objects in them, stay alive and unchanged until the call is over: nothing is copied.
class KORVEX_EXPORT Assembly {
 public:
  Assembly();
  Assembly(Assembly&&) noexcept;
  Assembly& operator=(Assembly&&) noexcept;
  ~Assembly();

  // Begins a call: every argument is declared, none that must not be null is, and a method with assignedTable has a
  // table. `table` stays alive like the arguments.
  [[nodiscard]] std::optional<PlanError> begin(const Plan& plan, const Arguments& arguments,
                                               std::string_view table = {});
  std::optional<PlanError> begin(const Plan& plan, Arguments&& arguments, std::string_view table = {}) = delete;

  // The entries of a method with "foreach", in their order: their number, and the one that the next assemble sees as
  // the item. Without "foreach" there is one call, and nothing to choose. An absent or null collection has no entries.
  [[nodiscard]] std::size_t entryCount() const;
  void chooseEntry(std::size_t index);

  // Takes the decisions of one unit: conditions, loops, values. On an error, what was assembled before is gone.
  [[nodiscard]] std::optional<PlanError> assemble(const PlanUnit& unit);

  // What was assembled; all of it is valid until the next begin or assemble.

  // An element with onVoid="quit" turned out empty: the unit is not run.
  [[nodiscard]] bool quits() const;
  // There is no SQL, white space and comments aside: nothing to run.
  [[nodiscard]] bool empty() const;
  // The unit and its decisions as bytes. Equal keys of one set stand for equal SQL with values of equal number and
  // order.
  [[nodiscard]] std::string_view key() const;
  // As many as there are "?" in the SQL, in their order.
  [[nodiscard]] std::span<const BoundValue> values() const;

  // The SQL of the decisions that were taken; without quits(). Written anew at each call.
  [[nodiscard]] std::string sql() const;
  // Where that SQL has what begins at an offset of it: the place of the text or element in the documents, counted on to
  // the character where the text has no list references and no entities in front of it. An offset at the end or beyond
  // gives the last piece, an empty SQL the unit.
  [[nodiscard]] SourcePlace placeOf(std::size_t offset) const;

 private:
  friend class DecisionMaker;
  struct State;

  [[nodiscard]] std::optional<PlanError> beginForeach();

  std::unique_ptr<State> _state;
};

// The whole of a method with one unit at once, for tests and tools. The SQL is empty when the unit quits.
struct Assembled {
  std::optional<PlanError> error;
  bool quits = false;
  std::string sql;
  std::vector<Value> values;    // copies
  std::vector<bool> encrypted;  // whether each of them is
  std::string key;
};
[[nodiscard]] KORVEX_EXPORT Assembled assemble(const PlanUnit& unit, const Arguments& arguments,
                                               std::string_view table = {}, std::size_t entry = 0);

// What of an interrupted call tells it from others: 16 bytes that equal arguments share and others, with near
// certainty, do not. Objects count by their classes' names and the properties that can be read.
[[nodiscard]] KORVEX_EXPORT std::string digestOf(const Arguments& arguments);

}  // namespace korvex
