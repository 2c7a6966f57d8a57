// Warnings that need no other definition to be seen.
#pragma once

#include "Checks/WarningList.h"
#include "Loader/DefinitionLoader.h"

namespace korvex {

// Of a definition that was refused, only those that are true of it all the same.
void findWarningsIn(const Definition& definition, WarningList& list);

}  // namespace korvex
