// korvex-dao man: the manual page of the command.
#pragma once

#include <iosfwd>

#include "tool/CommandDescription.h"

namespace korvex {

// In the man macros of roff.
void writeManPage(std::ostream& out, const CommandDescription& tool);

}  // namespace korvex
