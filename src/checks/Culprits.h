// Where in a rejected definition the fault is, and what to write instead.
#pragma once

#include <string>

#include "checks/Places.h"
#include "korvex/Definition.h"

namespace korvex {

// An error names a rule and a node. The culprit is the attribute, the text or the character in it.
struct Culprit {
  Span place;
  std::string help;  // never empty
};

// Of a definition that has an error.
[[nodiscard]] Culprit culpritOf(const Definition& definition, const Places& places);

}  // namespace korvex
