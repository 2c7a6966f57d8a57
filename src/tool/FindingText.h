// Findings for people, and for tools that read the output of compilers.
#pragma once

#include <iosfwd>

#include "checks/Finding.h"

namespace korvex {

// "path:line:column: severity: message [rule]" on one line, whatever the message contains; then the source line and
// a caret, if there is a source, a line of help, and a line for each related position.
void printFinding(std::ostream& out, const Finding& finding, bool color);

}  // namespace korvex
