// Findings for people and for the tools that read what compilers print.
#pragma once

#include <iosfwd>

#include "checks/Finding.h"

namespace korvex {

// "path:line:column: severity: message [rule]" on one line, whatever the message holds; then the source line and a
// caret, when there is a source, a line of help, and a line for each related place.
void printFinding(std::ostream& out, const Finding& finding, bool color);

}  // namespace korvex
