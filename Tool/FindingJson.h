// Findings for programs.
#pragma once

#include "Checks/Finding.h"
#include "Tool/ElementJson.h"

namespace korvex {

// The finding as data, the message exactly as it is.
[[nodiscard]] Json findingJson(const Finding& finding);

}  // namespace korvex
