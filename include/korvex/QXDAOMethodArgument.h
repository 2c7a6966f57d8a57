#pragma once

#include <utility>

#include "korvex/OptionalString.h"

namespace korvex {

// One declared argument of a method.
class QXDAOMethodArgument {
 public:
  // Without the "$" mark.
  [[nodiscard]] OptionalStringView name() const { return _name; }
  void setName(OptionalString name) { _name = std::move(name); }
  // The declaration began with "$".
  [[nodiscard]] bool notNull() const { return _notNull; }
  void setNotNull(bool notNull) { _notNull = notNull; }

 private:
  OptionalString _name;
  bool _notNull = false;
};

}  // namespace korvex
