// Findings for programs.
#pragma once

#include "checks/Finding.h"
#include "tool/ElementJson.h"

namespace korvex {

// The finding as data, the message exactly as it is.
[[nodiscard]] Json findingJson(const Finding& finding);

}  // namespace korvex
