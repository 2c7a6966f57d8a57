// Warnings about list references whose expansion is probably unintended.
#pragma once

#include "checks/WarningList.h"
#include "korvex/XMLNode.h"
#include "language/Vocabulary.h"

namespace korvex {

// Checks the element's own texts, not those of elements inside it.
void findUnfinishedReferences(const XMLNode& node, const ElementEntry& element, WarningList& list);

}  // namespace korvex
