// Element trees for people: the data of the JSON in the words of the mapping language, with one line per element and
// the SQL text unchanged.
#pragma once

#include <iosfwd>

#include "tool/ElementJson.h"

namespace korvex {

// Prints one entry of a dump, {"tag", "line", "element"} or {"tag", "line", "error"}. Absent
// properties and defaults are omitted.
void printDefinitionTree(std::ostream& out, const Json& entry);

}  // namespace korvex
