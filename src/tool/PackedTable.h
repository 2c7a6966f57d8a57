// A packed column value for people.
#pragma once

#include <iosfwd>

#include "tool/PackedValue.h"

namespace korvex {

// A header line and a line for each property, then where and why reading stopped; nothing for an empty
// value. Every line begins with two spaces; control characters are escaped.
void printPackedTable(std::ostream& out, const PackedValue& value);

}  // namespace korvex
