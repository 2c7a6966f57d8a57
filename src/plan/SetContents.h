// The contents of a set: the elements, and their compiled methods.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/DefinitionSet.h"
#include "plan/ExpressionParser.h"
#include "plan/Instruction.h"
#include "plan/Variants.h"

namespace korvex {

// A hash table of things by name; the names are not owned. Grows by doubling; at most half of it is used.
template <typename Thing>
class NameTable {
 public:
  // The thing that already has the name, or null if the new one was inserted.
  Thing* add(std::string_view name, Thing& thing) {
    if (2 * (_count + 1) > _slots.size()) grow();
    Slot& slot = slotOf(name);
    if (slot.thing) return slot.thing;
    slot = {name, &thing};
    ++_count;
    return nullptr;
  }
  [[nodiscard]] Thing* find(std::string_view name) const {
    return _slots.empty() ? nullptr : const_cast<NameTable*>(this)->slotOf(name).thing;
  }

 private:
  struct Slot {
    std::string_view name;
    Thing* thing = nullptr;
  };

  Slot& slotOf(std::string_view name) {
    const std::size_t mask = _slots.size() - 1;
    std::size_t at = std::hash<std::string_view>()(name) & mask;
    while (_slots[at].thing && _slots[at].name != name) at = (at + 1) & mask;
    return _slots[at];
  }
  void grow() {
    const std::vector<Slot> before = std::exchange(_slots, std::vector<Slot>(_slots.empty() ? 16 : _slots.size() * 2));
    for (const Slot& slot : before) {
      if (slot.thing) slotOf(slot.name) = slot;
    }
  }

  std::vector<Slot> _slots;  // a power of two, or none
  std::size_t _count = 0;
};

struct SetContents {
  const DefinitionSet* set = nullptr;
  std::vector<std::string> documents;
  std::vector<std::unique_ptr<QXDAOElement>> elements;

  std::vector<Plan> plans;  // of methods in the order of their names, then of upgrades in that of their versions
  std::vector<const Plan*> methodPlans;
  std::vector<const Plan*> upgradePlans;
  std::vector<PlanUnit> units;
  std::vector<PlanInstruction> instructions;
  ExpressionStore expressions;

  NameTable<const Plan> plansByName;
  NameTable<const QXDAOMap> maps;
  NameTable<const QXDAOPack> packs;
  std::vector<const QXDAOCryptProperty*> crypts;  // in the order of class and property
};

// Both are in the order of class and property.
[[nodiscard]] bool cryptComesBefore(const QXDAOCryptProperty* left, const QXDAOCryptProperty* right);
[[nodiscard]] bool declaresCrypt(const SetContents& contents, std::string_view className, std::string_view property);

// The position of a byte of a text that begins at a place.
[[nodiscard]] XMLPosition advanced(XMLPosition begin, std::string_view text);

// Where the SQL of an instruction comes from; `piece` as below, and the bytes of its text to skip.
[[nodiscard]] VariantText::Origin originOfInstruction(const SetContents& contents, std::size_t place, std::size_t piece,
                                                      std::size_t skipped);

// The position of an instruction. `piece` is the instruction, or one between two places.
[[nodiscard]] SourcePlace placeOfInstruction(const SetContents& contents, std::size_t place, std::size_t piece,
                                             std::size_t offset = 0);

}  // namespace korvex
