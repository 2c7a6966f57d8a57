// Findings as JSON.
#pragma once

#include "checks/Finding.h"
#include "tool/ElementJson.h"

namespace korvex {

// The finding with its exact message.
[[nodiscard]] Json findingJson(const Finding& finding);

}  // namespace korvex
