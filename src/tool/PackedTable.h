// A packed column value for people.
#pragma once

#include <iosfwd>

#include "tool/PackedValue.h"

namespace korvex {

// A line for each property below a line of headings, then where and why reading stopped; nothing
// for an empty value. Every line begins with two spaces; control characters are escaped.
void printPackedTable(std::ostream& out, const PackedValue& value);

}  // namespace korvex
