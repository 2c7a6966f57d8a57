// Findings as lines.
#pragma once

#include <iosfwd>

#include "checks/Finding.h"
#include "tool/InputFiles.h"

namespace korvex {

// "path:line:column: severity: message [rule]" on one line, whatever the path and the message contain.
void printShortFinding(std::ostream& out, const Finding& finding);

// A workflow command of GitHub Actions, which makes the finding an annotation of a pull request. A
// region within one line has columns; the last one is its last character.
void printGithubFinding(std::ostream& out, const Finding& finding);
// The same for an input that cannot be read.
void printGithubUnreadable(std::ostream& out, const UnreadablePath& path);

}  // namespace korvex
