// Prints what a method would run.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "korvex/Plan.h"
#include "tool/Tool.h"

namespace korvex {

// Prints the SQL of each statement, and its values below, one per line. A method with a foreach prints the statements
// of every entry; both blocks of a try are printed.
[[nodiscard]] ExitCode printSql(const Plan& plan, const Arguments& arguments, std::string_view table,
                                const Console& console);

// "-- step 2" and so on, as a line; empty for the only unit. The entry is that of a method's foreach, if one is chosen.
[[nodiscard]] std::string headingOf(const Plan& plan, std::optional<std::size_t> entry, std::size_t unit);

}  // namespace korvex
