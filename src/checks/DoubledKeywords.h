// Warnings about keywords in a text that the element behind it writes, too.
#pragma once

#include "checks/WarningList.h"
#include "korvex/XMLNode.h"

namespace korvex {

// Looks at the children of an element.
void findDoubledKeywords(const XMLNode& parent, WarningList& list);

}  // namespace korvex
