// The values that the SQL and the conditions of a unit read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "korvex/Plan.h"

namespace korvex {

struct PathUse {
  std::string path;   // as in ":person.address.city", without the mark
  const void* owner;  // distinguishes values of the same name: the method, or the loop whose item it is
  SourcePlace place;  // of the text or element that mentions it
};

// In the order of the document; a text that is inserted at several places is visited at each. The set must outlive the
// result.
[[nodiscard]] std::vector<PathUse> pathUsesOf(const PlanUnit& unit);

}  // namespace korvex
