// Suggestions for definitions that were rejected.
#pragma once

#include <string>

#include "korvex/QXDAORule.h"
#include "korvex/XMLNode.h"

namespace korvex {

// A suggestion about the node at fault, shown with the error's message; empty if there is none.
[[nodiscard]] std::string hintAbout(QXDAORule rule, const XMLNode& origin);

}  // namespace korvex
