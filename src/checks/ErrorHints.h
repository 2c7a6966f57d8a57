// What somebody may have meant who wrote a definition that was refused.
#pragma once

#include <string>

#include "korvex/QXDAORule.h"
#include "korvex/XMLNode.h"

namespace korvex {

// Something to say beside the error's message about the node at fault; empty when there is nothing.
[[nodiscard]] std::string hintAbout(QXDAORule rule, const XMLNode& origin);

}  // namespace korvex
