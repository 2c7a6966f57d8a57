// Reads the values of a call by their paths.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/DefinitionSet.h"
#include "korvex/ModelClass.h"
#include "korvex/Plan.h"
#include "korvex/Value.h"
#include "plan/Instruction.h"

namespace korvex {

// Why a value cannot be read or used; the message does not name the method.
struct ValueFailure {
  PlanErrorCode code = PlanErrorCode::WrongType;
  std::string message;
};

// The purpose of reading a value. In an expression, ".count" of a dictionary is the number of its entries; in a
// statement, it is the entry of that name. A statement can also bind the columns of packs like properties.
enum class ValueUse : std::uint8_t { Expression, Binding };

// The values of a call, and the owners of what was read through them.
struct ValueScope {
  const DefinitionSet* set = nullptr;
  std::vector<ValueView> slots;
  std::vector<std::shared_ptr<ModelObject>> objects;
  std::deque<std::string> packed;
};

struct ReadValue {
  ValueView value;
  bool encrypted = false;
};

// A member of a value: a property, an entry, a count or a length. Absent if the value cannot have it.
[[nodiscard]] std::optional<ReadValue> readMember(ValueScope& scope, const ValueView& value, std::string_view name,
                                                  ValueUse use, ValueFailure& failure);

// The value at a path of members, separated by dots; for an empty path, the value itself.
[[nodiscard]] std::optional<ReadValue> readPath(ValueScope& scope, const ValueView& value, std::string_view path,
                                                ValueUse use, ValueFailure& failure);

}  // namespace korvex
