// Element trees for people: the same data as the JSON, with the words of the mapping language, one
// line an element and the SQL text as it stands.
#pragma once

#include <iosfwd>

#include "tool/ElementJson.h"

namespace korvex {

// Prints one entry of a dump, {"tag", "line", "element"} or {"tag", "line", "error"}. Absent
// properties and defaults are left out.
void printDefinitionTree(std::ostream& out, const Json& entry);

}  // namespace korvex
