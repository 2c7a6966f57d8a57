// Warnings that need no other definition to be seen.
#pragma once

#include "checks/WarningList.h"
#include "korvex/Definition.h"

namespace korvex {

// Of a definition that was refused, only those that are true of it all the same.
void findWarningsIn(const Definition& definition, WarningList& list);

}  // namespace korvex
