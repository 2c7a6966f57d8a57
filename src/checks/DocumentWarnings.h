// Warnings that depend on one definition alone.
#pragma once

#include "checks/WarningList.h"
#include "korvex/Definition.h"

namespace korvex {

// A definition that was rejected gets only the warnings that do not depend on its element tree.
void findWarningsIn(const Definition& definition, WarningList& list);

}  // namespace korvex
