// What a method would run.
#pragma once

#include <string_view>

#include "korvex/Plan.h"
#include "tool/Tool.h"

namespace korvex {

// Prints the SQL of each statement and below it its values, one a line. A method for each entry of a collection prints
// all of them; both parts of a try are printed, whichever would run.
[[nodiscard]] ExitCode printSql(const Plan& plan, const Arguments& arguments, std::string_view table,
                                const Console& console);

}  // namespace korvex
