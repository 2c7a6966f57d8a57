// Something wrong with the SQL of a variant.
#pragma once

#include <optional>
#include <string>

#include "checks/Rules.h"
#include "verification/SqlTokens.h"

namespace korvex::verification {

struct Defect {
  const Rule* rule = nullptr;
  std::string message;
  std::string help;
  std::optional<ByteRange> place;  // in the SQL; absent if it has to be searched
};

}  // namespace korvex::verification
