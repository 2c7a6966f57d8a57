// The faults of a definition behind the one that it was rejected for.
#pragma once

#include <string>
#include <vector>

#include "checks/Culprits.h"
#include "checks/Places.h"
#include "korvex/Definition.h"
#include "korvex/QXDAORule.h"

namespace korvex {

struct FurtherFault {
  QXDAORule rule{};
  std::string message;
  Culprit culprit;
};

// Builds a rejected definition again, each time without the faults found so far. Gives up after some faults, and does
// not begin with very large definitions. `first` is the culprit of its error.
[[nodiscard]] std::vector<FurtherFault> furtherFaults(const Definition& definition, const Culprit& first,
                                                      const Places& places);

}  // namespace korvex
