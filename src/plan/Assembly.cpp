#include <algorithm>
#include <utility>

#include "korvex/Plan.h"
#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "plan/AssemblyState.h"
#include "plan/Evaluation.h"
#include "plan/PlanTitle.h"
#include "plan/SqlText.h"
#include "plan/UnitWalk.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

std::string_view pathBehindName(std::string_view path) {
  const std::size_t dot = path.find('.');
  return dot == std::string_view::npos ? std::string_view() : path.substr(dot + 1);
}

}  // namespace

// Decides by the arguments of a call, and collects the values.
class DecisionMaker : public UnitWalk<DecisionMaker> {
 public:
  explicit DecisionMaker(Assembly::State& state)
      : UnitWalk(*state.contents, *state.plan, state.key, state.trims), _state(state) {}

  std::optional<PlanError> run(std::size_t begin) {
    if (!walk(begin)) return error();
    _state.quits = quits();
    _state.empty = empty();
    return std::nullopt;
  }

 private:
  friend class UnitWalk<DecisionMaker>;

  // Each returns false on failure.

  bool test(const PlanInstruction& instruction, bool& outcome) {
    const auto value = evaluate(_contents.expressions.steps, instruction.number, _state.scope, _state.stack, _failure);
    if (!value) return fail(_failure.code, "condition: " + _failure.message);
    outcome = isTrue(*value);
    return true;
  }

  void dropValues() { _state.values.clear(); }

  bool refuseAll(std::string message, std::size_t place) {
    _place = place;
    return fail(PlanErrorCode::WouldChangeAll, std::move(message));
  }

  [[nodiscard]] std::string_view table() const { return _state.table; }

  bool entries(std::size_t at, std::size_t& count) {
    const PlanInstruction& instruction = _contents.instructions[at];
    const auto& element = instruction.element<QXDAOForeach>();
    _list = nullptr;
    if (!readList(*element.collection(), _state.scope.slots[instruction.slot], _list)) return false;
    count = _list ? _list->size() : 0;
    return !instruction.has(AfterNotIn) || checkNoNull(element);
  }

  bool enter(std::size_t at, std::size_t entry, std::size_t count) {
    const bool reverse = _contents.instructions[at].element<QXDAOForeach>().reverse();
    _state.scope.slots.back() = (*_list)[reverse ? count - 1 - entry : entry].view();
    return true;
  }
  void leave(std::size_t /*at*/) { _state.scope.slots.back() = {}; }

  // NOT IN a list with a null matches no row.
  bool checkNoNull(const QXDAOForeach& element) {
    if (!_list) return true;
    const auto null = std::find_if(_list->begin(), _list->end(), [](const Value& entry) { return entry.isNull(); });
    if (null == _list->end()) return true;
    return fail(PlanErrorCode::NullEntry, "entry " + std::to_string(null - _list->begin()) + " of " +
                                              quoted(*element.collection()) +
                                              " is null, and NOT IN with a null finds no row: leave it out");
  }

  // The list at a path; null for null.
  bool readList(std::string_view path, const ValueView& root, const ValueList*& list) {
    const auto read = readPath(_state.scope, root, pathBehindName(path), ValueUse::Binding, _failure);
    if (!read) return fail(_failure.code, quoted(path) + ": " + _failure.message);
    if (read->value.isNull()) return true;
    if (read->value.type() != ValueType::List) return failType(path, read->value, "a list is gone through");
    list = &read->value.list();
    return true;
  }

  bool pairs(const PlanInstruction& instruction, std::size_t& count) {
    const auto& element = instruction.element<QXDAOKeyValueFormatter>();
    const auto read = readPath(_state.scope, _state.scope.slots[instruction.slot], pathBehindName(*element.pairs()),
                               ValueUse::Binding, _failure);
    if (!read) return fail(_failure.code, quoted(*element.pairs()) + ": " + _failure.message);
    const bool null = read->value.isNull();
    if (!null && read->value.type() != ValueType::Dictionary) {
      return failType(*element.pairs(), read->value, "pairs are those of a dictionary");
    }
    count = null ? 0 : read->value.dictionary().size();
    appendNumber(_key, count);
    return count == 0 || bindPairs(read->value.dictionary(), *element.pairs());
  }

  // In the order of the keys, so that equal keys yield the same statement.
  bool bindPairs(const Dictionary& dictionary, std::string_view path) {
    std::vector<const Dictionary::Entry*>& pairs = _state.pairs;
    pairs.clear();
    for (const Dictionary::Entry& entry : dictionary) pairs.push_back(&entry);
    std::sort(pairs.begin(), pairs.end(), [](const auto* left, const auto* right) { return left->name < right->name; });
    for (const Dictionary::Entry* pair : pairs) {
      if (!canBeName(pair->name)) {
        return fail(PlanErrorCode::BadName,
                    "a key of " + quoted(path) + " cannot be the name of a column: it is empty, or no text");
      }
      appendName(_state.key, pair->name);
      if (!bindValue(pair->name, {pair->value.view()})) return false;
    }
    return true;
  }

  bool bind(const PlanInstruction& instruction) {
    const std::string_view path = instruction.text();
    const ValueView& root = _state.scope.slots[instruction.slot];
    const std::string_view behind = pathBehindName(path);
    if (behind.empty()) return bindValue(path, {root});
    const auto read = readPath(_state.scope, root, behind, ValueUse::Binding, _failure);
    return read ? bindValue(path, *read) : fail(_failure.code, "':" + std::string(path) + "': " + _failure.message);
  }

  bool bindValue(std::string_view name, const ReadValue& read) {
    switch (read.value.type()) {
      case ValueType::List:
        return failType(name, read.value, "write a foreach");
      case ValueType::Dictionary:
        return failType(name, read.value, "bind one of its entries");
      case ValueType::Object:
        return failType(name, read.value, "bind one of its properties");
      default:
        break;
    }
    _state.values.push_back({read.value, name, read.encrypted});
    return true;
  }

  bool failType(std::string_view name, const ValueView& value, std::string_view instead) {
    return fail(PlanErrorCode::WrongType,
                quoted(name) + " is " + std::string(nameOf(value.type())) + ": " + std::string(instead));
  }

  bool fail(PlanErrorCode code, std::string message) {
    _failure = {code, std::move(message)};
    return false;
  }

  // At the last executed instruction.
  PlanError error() {
    const SourcePlace place = placeOfInstruction(_contents, _place, std::max(_at - 1, _place));
    return {_failure.code, titleOf(*_state.plan) + ": " + _failure.message, place};
  }

  Assembly::State& _state;
  const ValueList* _list = nullptr;  // of the current foreach; null for null
  ValueFailure _failure;
};

// ---------------------------------------------------------------------------------------------

namespace {

PlanError callError(const Plan& plan, PlanErrorCode code, const std::string& message) {
  return {code, titleOf(plan) + ": " + message, plan.place()};
}

std::string declaredNames(const QXDAOMethod& method) {
  std::string names;
  for (const QXDAOMethodArgument& argument : *method.arguments()) {
    names.append(names.empty() ? "" : ", ").append(argument.name().value_or(std::string_view()));
  }
  return names.empty() ? "it has none" : "it has " + names;
}

PlanError unknownArgument(const Plan& plan, const Arguments& arguments) {
  const auto unknown = std::find_if(arguments.begin(), arguments.end(), [&plan](const Dictionary::Entry& entry) {
    return !plan.method().hasArgumentWithName(entry.name);
  });
  return callError(plan, PlanErrorCode::UnknownArgument,
                   "there is no argument " + quoted(unknown->name) + ": " + declaredNames(plan.method()));
}

}  // namespace

const Plan& PlanUnit::plan() const { return _contents->plans[_plan]; }

SourcePlace PlanUnit::place() const { return placeOfInstruction(*_contents, _begin, _begin); }

SourcePlace Plan::place() const { return placeOfInstruction(*_contents, _place, _place); }

std::span<const PlanUnit> Plan::units() const { return std::span(_contents->units).subspan(_firstUnit, _unitCount); }

Assembly::Assembly() : _state(std::make_unique<State>()) {}

Assembly::Assembly(Assembly&&) noexcept = default;

Assembly& Assembly::operator=(Assembly&&) noexcept = default;

Assembly::~Assembly() = default;

std::optional<PlanError> Assembly::begin(const Plan& plan, const Arguments& arguments, std::string_view table) {
  const auto& declared = *plan.method().arguments();
  State& state = *_state;
  state.contents = plan._contents;
  state.plan = &plan;
  state.table = table;
  state.entries = nullptr;
  state.scope.slots.assign(declared.size() + 2, ValueView());
  std::size_t given = 0;
  for (std::size_t slot = 0; slot < declared.size(); ++slot) {
    const std::string_view name = declared[slot].name().value_or(std::string_view());
    if (const Value* value = arguments.find(name)) {
      state.scope.slots[slot] = value->view();
      ++given;
    }
    if (declared[slot].notNull() && state.scope.slots[slot].isNull()) {
      return callError(plan, PlanErrorCode::NullArgument, "argument " + quoted(name) + " must not be null");
    }
  }
  if (given != arguments.size()) return unknownArgument(plan, arguments);
  if (plan.method().assignedTable() && !canBeName(table)) {
    return callError(plan, PlanErrorCode::MissingTable, "the call assigns no table, or no name of one");
  }
  return plan.method().foreach () ? beginForeach() : std::nullopt;
}

std::optional<PlanError> Assembly::beginForeach() {
  const Plan& plan = *_state->plan;
  const auto& declared = *plan.method().arguments();
  const std::string_view collection = plan.method().foreachCollection().value_or(std::string_view());
  const auto found = std::find_if(declared.begin(), declared.end(), [collection](const QXDAOMethodArgument& argument) {
    return argument.name() == collection;
  });
  const ValueView& value = _state->scope.slots[static_cast<std::size_t>(found - declared.begin())];
  if (value.type() == ValueType::List) _state->entries = &value.list();
  if (value.isNull() || _state->entries) return std::nullopt;
  return callError(plan, PlanErrorCode::WrongType,
                   quoted(collection) + " is " + std::string(nameOf(value.type())) + ": a list is gone through");
}

std::size_t Assembly::entryCount() const {
  if (!_state->plan->method().foreach ()) return 1;
  return _state->entries ? _state->entries->size() : 0;
}

void Assembly::chooseEntry(std::size_t index) {
  if (!_state->entries) return;
  std::vector<ValueView>& slots = _state->scope.slots;
  slots[slots.size() - 2] = (*_state->entries)[index].view();
}

std::optional<PlanError> Assembly::assemble(const PlanUnit& unit) {
  State& state = *_state;
  state.scope.set = unit._contents->set;
  state.scope.objects.clear();
  state.scope.packed.clear();
  state.trims.clear();
  state.values.clear();
  state.quits = false;
  state.empty = true;
  state.unit = &unit;
  state.key.clear();
  appendUnit(state.key, unit._number);
  std::optional<PlanError> error = DecisionMaker(state).run(unit._begin);
  if (error) state.unit = nullptr;
  return error;
}

bool Assembly::quits() const { return _state->quits; }

bool Assembly::empty() const { return _state->empty; }

std::string_view Assembly::key() const { return _state->key; }

std::span<const BoundValue> Assembly::values() const { return _state->values; }

std::string Assembly::sql() const {
  if (!_state->unit || _state->quits) return {};
  return std::move(AssembledText(*_state->contents, *_state->unit, _state->key).sql());
}

SourcePlace Assembly::placeOf(std::size_t offset) const {
  if (!_state->unit || _state->quits) return _state->plan->place();
  return AssembledText(*_state->contents, *_state->unit, _state->key).placeOf(offset);
}

Assembled assemble(const PlanUnit& unit, const Arguments& arguments, std::string_view table, std::size_t entry) {
  Assembly assembly;
  Assembled result;
  result.error = assembly.begin(unit.plan(), arguments, table);
  if (result.error) return result;
  if (entry < assembly.entryCount()) assembly.chooseEntry(entry);
  result.error = assembly.assemble(unit);
  if (result.error) return result;
  result.quits = assembly.quits();
  result.sql = assembly.sql();
  result.key = assembly.key();
  for (const BoundValue& value : assembly.values()) {
    result.values.push_back(Value::copyOf(value.value));
    result.encrypted.push_back(value.encrypted);
  }
  return result;
}

}  // namespace korvex
