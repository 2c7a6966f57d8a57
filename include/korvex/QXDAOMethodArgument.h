#pragma once

#include <utility>

#include "korvex/CompactString.h"
#include "korvex/OptionalString.h"

namespace korvex {

// One declared argument of a method: a plain value that owns its name.
class QXDAOMethodArgument {
 public:
  QXDAOMethodArgument() = default;
  QXDAOMethodArgument(CompactString name, bool notNull) : _name(std::move(name)), _notNull(notNull) {}

  // Without the "$" mark; absent until it is set. Names are not validated: "$" alone declares an
  // argument with an empty name. Valid until the name is set again or the argument is destroyed.
  [[nodiscard]] OptionalStringView name() const { return _name.view(); }
  void setName(OptionalStringView name) { _name = CompactString(name); }
  // True if the declaration began with "$": the value must not be null.
  [[nodiscard]] bool notNull() const { return _notNull; }
  void setNotNull(bool notNull) { _notNull = notNull; }

 private:
  CompactString _name;
  bool _notNull = false;
};

}  // namespace korvex
