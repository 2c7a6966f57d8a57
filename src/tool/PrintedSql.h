// Prints what a method would run.
#pragma once

#include <string_view>

#include "korvex/Plan.h"
#include "tool/Tool.h"

namespace korvex {

// Prints the SQL of each statement, and its values below, one per line. A method with a foreach prints the statements
// of every entry; both blocks of a try are printed.
[[nodiscard]] ExitCode printSql(const Plan& plan, const Arguments& arguments, std::string_view table,
                                const Console& console);

}  // namespace korvex
