// Warnings about list references whose expansion is probably unintended.
#pragma once

#include "checks/WarningList.h"
#include "korvex/XMLNode.h"
#include "language/Vocabulary.h"

namespace korvex {

// In the texts that the element itself holds, not in those of elements inside it.
void findUnfinishedReferences(const XMLNode& node, const ElementEntry& element, WarningList& list);

}  // namespace korvex
